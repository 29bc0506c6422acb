/// @file
/// Child processes: through the command interpreter, directly with the exit code, and with a pipe.
///
/// Any thread may call these functions. They do not change the command, which belongs to the
/// caller.
///
/// By design, ksl_system and ksl_popen pass the bytes of a command on unconverted. The runtime
/// reads them in the process's ANSI code page (or in the page of file calls), not as UTF-8. So a
/// UTF-8 command with a character beyond ASCII runs as another command, and may name other files.
/// Pass only ASCII, use ksl_system2, or make UTF-8 the ANSI page (docs/windows.md).
#ifndef UTIL_PORTABLE_KSL_PROCESS_H
#define UTIL_PORTABLE_KSL_PROCESS_H

#ifdef __cplusplus
#include <cstdio>
#else
#include <stdio.h>
#endif

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Runs `command` with the command interpreter and waits for it. This is the runtime's `system`:
/// its result and errno are unchanged. Returns the command's exit code, or -1 if there is no
/// interpreter. The exit code is 9009 for a program that the interpreter does not find. A null
/// command asks whether there is an interpreter.
///
///     ksl_system("exit 7")   // 7
///
/// Never put a text from outside into `command`: the interpreter runs what the text asks for.
UTIL_API int ksl_system(const char* command);

/// Runs a program without the interpreter (no redirection, no built-in commands) and waits for it
/// without a limit. `command` is the program and its arguments in UTF-8. Put double quotes around a
/// path with blanks. The child gets the caller's environment and current directory. It inherits no
/// handle.
///
/// Returns the child's exit code, all 32 bits as a signed number. Returns -1 on failure. A child
/// that exits with -1 gives the same result. After a failure, the last error is the cause: no such
/// program, wait failed, or exit code unreadable. errno is 12 if out of memory, and 22 for a null
/// command.
///
/// A command fails like a missing program, with last error 2, if the code page of file calls cannot
/// represent it exactly, or if it has more than 32,766 bytes in that page. That page is the ANSI
/// page, or the OEM page after the platform's `SetFileApisToOEM`.
///
///     ksl_system2("\"C:\\Program Files\\Agent\\check.exe\" --quick")   // exit code of check.exe
UTIL_API int ksl_system2(const char* command);

/// Starts `command` with the command interpreter and a pipe to it. This is the runtime's `_popen`:
/// its result and errno are unchanged. With `mode` `"r"` the stream reads what the command prints.
/// With `"w"` it writes what the command reads. A `"b"` or `"t"` after that selects binary or text.
///
/// Returns the stream. Close it with ksl_pclose. A command that the interpreter does not find also
/// gives a stream. Returns null with errno on failure: 22 for a bad mode and for null arguments.
///
///     FILE* stream = ksl_popen("ver", "r");   // fgets reads the version line
///
/// Never put a text from outside into `command`. The child inherits all inheritable handles, as
/// with ksl_system.
UTIL_API FILE* ksl_popen(const char* command, const char* mode);

/// Closes a stream of ksl_popen and waits for its command. This is the runtime's `_pclose`, but
/// returns 0 for every result that is not negative. By design, the command's exit status is
/// discarded. Returns a negative result unchanged; a command with a negative exit code also gives
/// one. Returns -1 with errno 22 for a null stream.
///
///     ksl_pclose(ksl_popen("exit 1", "r"))   // 0
UTIL_API int ksl_pclose(FILE* stream);

UTIL_EXTERN_C_END

#endif
