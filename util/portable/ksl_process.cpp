#include "util/portable/ksl_process.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace {

// Returns a copy in the page of CreateProcessA, which may write into its command line.
util::ScopedMalloc<char> writable_command_line(const char* command) {
    const auto out_of_memory = [] {
        errno = ENOMEM;
        return util::ScopedMalloc<char>();
    };
    return util::guarded(out_of_memory, [&] {
        std::string ansi;
        if (util::utf8_to_ansi(command, ansi, util::Page::files))
            return util::ScopedMalloc<char>(_strdup(ansi.c_str()));
        SetLastError(ERROR_FILE_NOT_FOUND);
        return util::ScopedMalloc<char>();
    });
}

// Returns the handle of the started program, invalid when it cannot be started.
util::WinHandle start(const char* command) {
    const util::ScopedMalloc<char> line = writable_command_line(command);
    if (!line) return util::WinHandle();
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child = {};
    if (!CreateProcessA(nullptr, line.get(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &child)) {
        return util::WinHandle();
    }
    const util::WinHandle thread(child.hThread);
    return util::WinHandle(child.hProcess);
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
    const util::WinHandle child = start(command);
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
