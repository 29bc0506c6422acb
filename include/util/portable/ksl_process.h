// Child processes: through the command interpreter, directly with the exit code, and as a pipe.
//
// Any thread may call these functions. Commands belong to the caller and are not modified.
//
// By design, ksl_system and ksl_popen pass the bytes of a command on unconverted. The runtime reads
// them in the process's ANSI code page (or in that of file calls), not as UTF-8. So a command in
// UTF-8 with a character beyond ASCII runs as another command and may name other files. Pass ASCII
// alone, use ksl_system2, or make UTF-8 the ANSI page (docs/windows.md).
#ifndef UTIL_PORTABLE_KSL_PROCESS_H
#define UTIL_PORTABLE_KSL_PROCESS_H

#ifdef __cplusplus
#include <cstdio>
#else
#include <stdio.h>
#endif

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Runs `command` with the command interpreter and waits for it. This is the runtime's system(): its
// result and errno are unchanged. The result is the command's exit code (9009 for a program that
// the interpreter does not find), or -1 when there is no interpreter. A null command asks whether
// there is one.
//
//     ksl_system("exit 7")   // 7
// Never put a text from outside into `command`: the interpreter runs what the text asks for.
UTIL_API int ksl_system(const char* command);

// Runs a program without the interpreter (no redirection, no built-in commands) and waits for it
// without a limit. `command`, UTF-8, is the program and its arguments, quoted where a path has
// blanks. The child gets the caller's environment and current directory and inherits no handle.
//
// Returns the child's exit code, all 32 bits as a signed number. Returns -1 on failure, as for a
// child that exits with -1. The last error says why: no such program, wait failed, exit code
// unreadable. errno is 12 when out of memory, and 22 for a null command.
//
// A command fails like a missing program, with last error 2, when the code page of file calls
// cannot hold it exactly or in 32,766 bytes. That page is the ANSI page, or the OEM page after the
// platform's SetFileApisToOEM.
//
//     ksl_system2("\"C:\\Program Files\\Agent\\check.exe\" --quick")   // what check.exe exits with
UTIL_API int ksl_system2(const char* command);

// Starts `command` with the command interpreter and a pipe to it. This is the runtime's _popen():
// its result and errno are unchanged. `mode` "r" reads what the command prints, "w" writes what it
// reads. "b" or "t" after it selects binary or text. A command that the interpreter does not find
// gives a stream all the same.
//
// Close the stream with ksl_pclose. Returns null, with errno set, on failure: 22 for a bad mode and
// for null arguments.
//
//     FILE* stream = ksl_popen("ver", "r");   // fgets reads the version line
// Never put a text from outside into `command`. The child inherits all inheritable handles, as with
// ksl_system.
UTIL_API FILE* ksl_popen(const char* command, const char* mode);

// Closes a stream of ksl_popen and waits for its command. This is the runtime's _pclose(), but
// returns 0 for every result that is not negative: by design the command's exit status is
// discarded. Returns a negative result unchanged, which is also what a command that exits with one
// gives. Returns -1 with errno 22 for a null stream.
//
//     ksl_pclose(ksl_popen("exit 1", "r"))   // 0
UTIL_API int ksl_pclose(FILE* stream);

UTIL_EXTERN_C_END

#endif
