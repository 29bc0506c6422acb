#include "util/portable/ksl_process.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "util/internal/encoding.h"
#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"

namespace {

struct Release {
    void operator()(char* block) const {
        const util::KeptErrors kept;
        std::free(block);
    }
    void operator()(HANDLE handle) const {
        const util::KeptErrors kept;
        CloseHandle(handle);
    }
};
using CommandLine = std::unique_ptr<char, Release>;
using Handle = std::unique_ptr<void, Release>;

// A copy in the page of CreateProcessA, which may write into its command line.
CommandLine writable_command_line(const char* command) {
    try {
        std::string ansi;
        if (util::utf8_to_ansi(command, ansi, util::Page::files)) {
            return CommandLine(_strdup(ansi.c_str()));
        }
        SetLastError(ERROR_FILE_NOT_FOUND);
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
    }
    return nullptr;
}

// Null when the program cannot be started.
Handle start(const char* command) {
    const CommandLine line = writable_command_line(command);
    if (!line) return nullptr;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child = {};
    if (!CreateProcessA(nullptr, line.get(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &child)) {
        return nullptr;
    }
    Release()(child.hThread);
    return Handle(child.hProcess);
}

}  // namespace

int ksl_system(const char* command) {
    return std::system(command);
}

int ksl_system2(const char* command) {
    if (!command) {
        errno = EINVAL;
        return -1;
    }
    const Handle child = start(command);
    DWORD code;
    if (!child || WaitForSingleObject(child.get(), INFINITE) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(child.get(), &code)) {
        return -1;
    }
    return static_cast<int>(code);
}

FILE* ksl_popen(const char* command, const char* mode) {
    if (!command || !mode) {
        errno = EINVAL;
        return nullptr;
    }
    return _popen(command, mode);
}

int ksl_pclose(FILE* stream) {
    if (!stream) {
        errno = EINVAL;
        return -1;
    }
    return std::min(_pclose(stream), 0);
}
