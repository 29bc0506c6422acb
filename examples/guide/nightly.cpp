#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>

#include "util/util.h"

namespace {

using Inventory = std::map<String, std::uint64_t>;  // names and sizes

// The files of a folder. False when it cannot be listed to its end.
bool list(const String& folder, Inventory& files) {
    WIN32_FIND_DATAW found;
    char name[778];  // the longest name in UTF-8, and a NUL
    const HANDLE search = UTF8_FindFirstFile(folder + "\\*", &found, name);
    if (search == INVALID_HANDLE_VALUE) return false;
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            files[name] = (std::uint64_t{found.nFileSizeHigh} << 32) + found.nFileSizeLow;
    } while (UTF8_FindNextFile(search, &found, name));
    const bool is_complete = GetLastError() == ERROR_NO_MORE_FILES;
    FindClose(search);
    return is_complete;
}

// Replaces the file at `path`, but only when the new one is whole.
bool store(const String& path, const Inventory& files) {
    const std::string fresh = path.str() + ".new";
    XrFile file(fresh.c_str(), "w");
    file << std::to_string(files.size());
    for (const auto& [name, size] : files)
        file << name << std::to_string(size);  // 64 bits, so as text
    if (file.Error() || !file.Close()) return false;
    std::error_code error;
    rename(std::filesystem::u8path(fresh), std::filesystem::u8path(path.str()), error);
    return !error;
}

bool load(const String& path, Inventory& files) {
    XrFile file(path, "r");
    String count;
    String name;
    String size;
    file >> count;
    for (int left = count.to_int(); left > 0 && !file.Error(); --left) {
        file >> name >> size;
        files[name] = std::strtoull(size, nullptr, 10);
    }
    return !file.Error();
}

// Mails the report when something is wrong. Returns what became of it.
String night(const String& folder, const String& inventory) {
    Inventory before;
    Inventory now;
    String report;
    if (list(folder, now)) {
        if (!load(inventory, before)) report += "no inventory of the night before\r\n";
        for (const auto& [name, size] : before)
            if (now.count(name) == 0) report += "missing: " + name + "\r\n";
        if (!store(inventory, now)) report += "cannot write " + inventory + "\r\n";
    } else {
        report = "cannot list " + folder + "\r\n";  // and the inventory stays
    }
    if (report.empty()) return "all well\n";
    std::cout << report.replace("\r", "");
    email mail("agent@example.test", "admin@example.test", "nightly inventory", report);
    if (!MailInstalled()) return "not mailed: there is no mail service\n";
    return mail.send() == 0 ? "mailed\n" : "not mailed: " + mail.GetLastErrorMessage() + "\n";
}

}  // namespace

int main() {
    UTF8_mkdir("data");
    XrFile("data\\a.bin", "w") << 1;
    XrFile("data\\b.bin", "w") << 2;
    std::cout << "first night\n" << night("data", "inventory.rec");
    std::cout << "second night\n" << night("data", "inventory.rec");
    UTIL_delete("data\\b.bin");
    std::cout << "third night\n" << night("data", "inventory.rec");
}
