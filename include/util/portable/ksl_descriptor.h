// Descriptor input and output and the environment under names that are the same on every platform.
// Here they are the runtime library's own calls. Results and errno are the runtime's, and so are
// the thread rules: one descriptor has one position, whoever moves it.
#ifndef UTIL_PORTABLE_KSL_DESCRIPTOR_H
#define UTIL_PORTABLE_KSL_DESCRIPTOR_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// _close. Returns 0, or -1 with errno. By design descriptor 0 is never closed and returns 0 at
// once, so that no stray zero takes standard input away from the process.
UTIL_API int ksl_close(int descriptor);

// _write and _read. Return the number of bytes moved, which may be less than `count`, or -1 with
// errno. Reading returns 0 at the end of the file. Counts are in bytes.
UTIL_API int ksl_write(int descriptor, const char* data, unsigned int count);
UTIL_API int ksl_read(int descriptor, void* buffer, unsigned int count);

// _lseek. Returns the new position in bytes from the start, or -1 with errno. `origin` is 0
// (start), 1 (current position) or 2 (end).
//     long size = ksl_lseek(fd, 0, 2);
UTIL_API long ksl_lseek(int descriptor, long offset, int origin);

// _dup. Returns another descriptor of the same open file, which shares its position, or -1 with
// errno.
UTIL_API int ksl_dup(int descriptor);

// Does nothing and returns 0, whatever the arguments: descriptors have no buffer to flush.
UTIL_API int ksl_flush(UTIL_ANY_ARGUMENTS);

// _putenv with "NAME=value" ("NAME=" removes the variable). Returns 0, or -1. This process and its
// children see the change. An assignment of more than 32,766 bytes gives -1 with errno 22: lengths
// of the platform's call have 16 bits.
//
// By design the bytes are passed on unconverted, and the runtime reads them in the process's ANSI
// code page, not as UTF-8. So a UTF-8 value with a character beyond ASCII is stored as other
// characters: with page 1252 a wide reader, and this library is one, finds U+00C3 U+00A9 for
// "\xC3\xA9". A path stored like this names another file. Pass ASCII alone, call the platform's
// SetEnvironmentVariableW, or make UTF-8 the ANSI page (docs/windows.md).
//     ksl_putenv("AGENT_TRACE=1");
UTIL_API int ksl_putenv(const char* assignment);

UTIL_EXTERN_C_END

#endif
