// Starting processes. Every test that starts one itself does it here.
//
// Wine sometimes cannot start a process: CreateProcess fails with ERROR_INTERNAL_ERROR, or the
// process ends with STATUS_DLL_INIT_FAILED before its program begins. Both are repeated, at most
// twice in a row, and noted in the file that UTIL_REPEATED_STARTS names. Nothing else is repeated.
#ifndef UTIL_TESTS_SUPPORT_PROCESS_H
#define UTIL_TESTS_SUPPORT_PROCESS_H

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "support/built_file.h"
#include "support/scratch_directory.h"
#include "util/internal/scoped_handle.h"

namespace util_test {

// What CreateProcess takes. Relative names start at `directory`.
struct Start {
    std::string command;
    bool inherits = false;  // the inheritable handles of this process
    STARTUPINFOW startup = {};
    DWORD flags = 0;
    std::string directory = ".";
};

// Notes that the start failed with `code` and is to be repeated; false when no try is left.
inline bool repeats(const Start& start, DWORD code, int tries_left) {
    const char* const name = std::getenv("UTIL_REPEATED_STARTS");
    if (std::FILE* const notes = name && tries_left > 0 ? std::fopen(name, "a") : nullptr) {
        std::fprintf(notes, "%s: %lx\n", start.command.c_str(), code);
        std::fclose(notes);
    }
    return tries_left > 0;
}

// The process, which may still be loading. Throws when the program cannot be started.
inline util::WinHandle started(Start start) {
    start.startup.cb = sizeof start.startup;
    for (int tries_left = 2;; --tries_left) {
        std::wstring line = to_wide(start.command);
        PROCESS_INFORMATION process;
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, start.inherits, start.flags,
                           nullptr, to_wide(start.directory).c_str(), &start.startup, &process)) {
            CloseHandle(process.hThread);
            return util::WinHandle(process.hProcess);
        }
        const DWORD error = GetLastError();
        if (error != ERROR_INTERNAL_ERROR || !repeats(start, error, tries_left))
            throw std::runtime_error(start.command + ": error " + std::to_string(error));
    }
}

// Waits for the end of the process and returns its exit code, or 259 when it does not end in time.
inline DWORD exit_code(HANDLE process, DWORD limit_ms = INFINITE) {
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(process, limit_ms);
    GetExitCodeProcess(process, &code);
    return code;
}

// Runs a program to its end and returns its exit code.
inline DWORD run(const Start& start) {
    constexpr DWORD dll_init_failed = 0xC0000142;
    for (int tries_left = 2;; --tries_left) {
        const DWORD code = exit_code(started(start).get());
        if (code != dll_init_failed || !repeats(start, code, tries_left)) return code;
    }
}

// The output of a program beside this one, at most 64 KiB, with line feeds alone. Throws when the
// program does not end with 0.
inline std::string output_of(const std::string& program) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    HANDLE from, to;
    CreatePipe(&from, &to, &inherited, 1 << 16);
    Start start = {"\"" + built_file(program) + "\"", true};
    start.startup.dwFlags = STARTF_USESTDHANDLES;
    start.startup.hStdOutput = to;
    const DWORD code = run(start);
    CloseHandle(to);
    std::string output;
    DWORD size;
    for (char c; ReadFile(from, &c, 1, &size, nullptr) && size == 1;) {
        if (c != '\r') output += c;
    }
    CloseHandle(from);
    if (code != 0) throw std::runtime_error(program + " ends with " + std::to_string(code));
    return output;
}

}  // namespace util_test

#endif
