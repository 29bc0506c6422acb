#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>

#include "util/util.h"

int main() {
    // Write a record. A number beyond 32 bits is written as text.
    XrFile record("first.rec", "w");
    record << 7 << "backup.bin" << std::to_string(5'000'000'000);
    if (record.Error() || !record.Close()) return 1;

    // List this folder. Sizes in a listing have 32 bits, so ask for 64.
    XrDirectory folder(".");
    for (const XrDirectoryEntry* entry : *folder.getDirectoryList(false, false)) {
        std::error_code error;
        const auto size = file_size(std::filesystem::u8path(entry->str()), error);
        if (!error) std::cout << *entry << ": " << size << " bytes\n";
    }

    // Read the record.
    int disk = 0;
    String name;
    String size;
    record.Open("r");
    record >> disk >> name >> size;
    if (record.Error()) return 1;
    std::cout << "disk " << disk << ": " << name << ", " << size << " bytes\n";
}
