#include <cstdint>
#include <iostream>
#include <string>

#include "util/files/files.h"
#include "util/portable/current_directory.h"

int main() {
    // A record file: values are written and read with their types. A failure is remembered, so one
    // question after several operations is enough. A number beyond 32 bits is written as text.
    const std::int64_t size = 5'000'000'000;
    XrFile file("state.rec", "w");
    file << 42 << "ready" << std::to_string(size);
    file.Close();
    int number = 0;
    String state;
    String text;
    file.Open("r");
    file >> number >> state >> text;
    std::cout << number << ", " << state << ", " << std::stoll(text.str()) / 2 << '\n';
    file >> number;  // there is no more
    int code = 0;
    std::cout << std::boolalpha << "failed: " << file.Error(code) << '\n';
    file.Close();

    // Create a tree. The record names what was missing, so a clean-up can remove exactly that.
    const String here = UTIL_CurrentDirectory();
    String message;
    String failed;
    int kind = 0;
    const unsigned long result =
        UTIL_prepareAndCreateDir(here + "\\mount\\r1", message, here + "\\made.rec", failed, &kind);
    std::cout << "prepared: " << result << '\n';

    // List a directory, sorted by name.
    XrDirectory directory(here);
    for (const XrDirectoryEntry* entry : *directory.getDirectoryList(false, false))
        std::cout << entry->getName() << (entry->isDirectory() ? ", a directory" : "") << '\n';

    // Copy, delete, clean up.
    std::cout << "copied: " << UTIL_copy("state.rec", "state.bak", 0) << '\n';
    for (const char* name : {"state.rec", "state.bak", "made.rec"})
        UTIL_delete(name);
    std::cout << "left over: " << UTIL_cleanupDir("mount\\r1", 1) + UTIL_cleanupDir("mount", 1)
              << '\n';
}
