#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <iostream>

#include "util/portable/utf8_files.h"

namespace {

enum class Instance { first, another, unknown };

// `first` locks the file until the process ends. Children do not inherit the lock.
Instance lock_instance(const char* path) {
    const int file = UTF8_open(path, _O_CREAT | _O_RDWR | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (file == -1) return Instance::unknown;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file));
    OVERLAPPED first_byte = {};
    constexpr DWORD at_once = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    if (LockFileEx(handle, at_once, 0, 1, 0, &first_byte)) return Instance::first;
    const DWORD error = GetLastError();
    _close(file);
    return error == ERROR_LOCK_VIOLATION ? Instance::another : Instance::unknown;
}

void ask(const char* path) {
    switch (lock_instance(path)) {
        case Instance::first:
            std::cout << "the first instance\n";
            break;
        case Instance::another:
            std::cout << "another instance is running\n";
            break;
        case Instance::unknown:
            std::cout << "cannot tell: no file " << path << '\n';
            break;
    }
}

}  // namespace

int main() {
    ask("agent.lock");
    ask("agent.lock");  // a second handle is refused like a second process
    ask("no such folder\\agent.lock");
}
