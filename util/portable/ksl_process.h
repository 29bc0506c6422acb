// Child processes: through the command interpreter, directly with the exit code, and as a pipe.
//
// All functions may be called from any thread. Commands belong to the caller and are not modified.
#ifndef UTIL_PORTABLE_KSL_PROCESS_H
#define UTIL_PORTABLE_KSL_PROCESS_H

#ifdef __cplusplus
#include <cstdio>
#else
#include <stdio.h>
#endif

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Runs command with the command interpreter and waits for it: the runtime's system(), result and
// errno unchanged. That is the command's exit code (9009 for a program that the interpreter does
// not find), or -1 when there is no interpreter. A null command asks whether there is one. The
// runtime reads the text in the process's ANSI code page, not as UTF-8.
//
//     ksl_system("exit 7")   // 7
UTIL_API int ksl_system(const char* command);

// Runs a program without the interpreter (no redirection, no built-in commands) and waits for it
// without a limit. command, UTF-8, is the program and its arguments, quoted where a path has
// blanks. The child gets the caller's environment and current directory and inherits no handle.
//
// Returns the child's exit code, all 32 bits as a signed number. -1 on failure, which a child that
// exits with -1 looks like: no such program, wait failed, exit code unreadable (the last-error
// code says why); no memory (errno 12). A command that the process's ANSI code page cannot hold
// fails like a missing program, with last-error code 2. A null command gives -1 with errno 22.
//
//     ksl_system2("\"C:\\Program Files\\Agent\\check.exe\" --quick")   // what check.exe exits with
UTIL_API int ksl_system2(const char* command);

// Starts command with the command interpreter and a pipe to it: the runtime's _popen(), result and
// errno unchanged. mode "r" reads what the command prints, "w" writes what it reads; "b" or "t"
// behind it select binary or text. The runtime reads the command in the process's ANSI code page,
// not as UTF-8. A command that the interpreter does not find gives a stream all the same.
//
// The stream is closed with ksl_pclose. Null, with errno set, on failure: 22 for a bad mode and
// for null arguments.
//
//     FILE* stream = ksl_popen("ver", "r");   // fgets reads the version line
UTIL_API FILE* ksl_popen(const char* command, const char* mode);

// Closes a stream of ksl_popen and waits for its command: the runtime's _pclose(), but 0 for every
// result that is not negative. The command's exit status is discarded; this is meant. A negative
// result is returned unchanged, which is also what a command that exits with one gives. A null
// stream gives -1 with errno 22.
//
//     ksl_pclose(ksl_popen("exit 1", "r"))   // 0
UTIL_API int ksl_pclose(FILE* stream);

UTIL_EXTERN_C_END

#endif
