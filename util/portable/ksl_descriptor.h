// Descriptor input and output and the environment under names that are the same on every platform.
// Here they are the runtime library's own calls: results and errno are the runtime's, and the
// thread rules too (one descriptor has one position, whoever moves it).
#ifndef UTIL_PORTABLE_KSL_DESCRIPTOR_H
#define UTIL_PORTABLE_KSL_DESCRIPTOR_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// _close: 0, or -1 with errno. Descriptor 0 is never closed and gives 0 at once; this is meant, so
// that no stray zero takes standard input away from the process.
UTIL_API int ksl_close(int descriptor);

// _write and _read: the number of bytes moved, which may be short, or -1 with errno. Reading gives
// 0 at the end of the file. Counts are in bytes.
UTIL_API int ksl_write(int descriptor, const char* data, unsigned int count);
UTIL_API int ksl_read(int descriptor, void* buffer, unsigned int count);

// _lseek: the new position in bytes from the start, or -1 with errno. origin is 0 (start),
// 1 (current position) or 2 (end).
//     long size = ksl_lseek(fd, 0, 2);
UTIL_API long ksl_lseek(int descriptor, long offset, int origin);

// _dup: another descriptor of the same open file, sharing its position, or -1 with errno.
UTIL_API int ksl_dup(int descriptor);

// Does nothing and returns 0, whatever the arguments: descriptors have no buffer to flush.
UTIL_API int ksl_flush(UTIL_ANY_ARGUMENTS);

// _putenv with "NAME=value" ("NAME=" removes): 0, or -1. Seen by this process and its children.
//     ksl_putenv("AGENT_TRACE=1");
UTIL_API int ksl_putenv(const char* assignment);

UTIL_EXTERN_C_END

#endif
