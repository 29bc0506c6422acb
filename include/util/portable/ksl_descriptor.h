/// @file
/// Descriptor input and output and the environment, under names that are the same on every
/// platform.
///
/// Here they are calls of the runtime library. Results, errno and thread rules are those of the
/// runtime. All users of a descriptor share one position.
#ifndef UTIL_PORTABLE_KSL_DESCRIPTOR_H
#define UTIL_PORTABLE_KSL_DESCRIPTOR_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Closes a descriptor, as `_close` does. Returns 0, or -1 with errno. By design, descriptor 0 is
/// never closed and the call returns 0 at once: a stray zero cannot close standard input.
UTIL_API int ksl_close(int descriptor);

/// Writes or reads `count` bytes, as `_write` and `_read` do. Returns the number of bytes moved,
/// which may be less than `count`, or -1 with errno. Reading returns 0 at the end of the file.
/// @{
UTIL_API int ksl_write(int descriptor, const char* data, unsigned int count);
UTIL_API int ksl_read(int descriptor, void* buffer, unsigned int count);
/// @}

/// Moves the position to `offset` bytes from `origin`, as `_lseek` does. `origin` is 0 (start), 1
/// (current position) or 2 (end). Returns the new position in bytes from the start, or -1 with
/// errno.
///
///     long size = ksl_lseek(fd, 0, 2);
UTIL_API long ksl_lseek(int descriptor, long offset, int origin);

/// Duplicates a descriptor, as `_dup` does. Returns another descriptor of the same open file, which
/// shares its position. Returns -1 with errno on failure.
UTIL_API int ksl_dup(int descriptor);

/// Returns 0 and ignores the arguments: descriptors have no buffer to flush.
UTIL_API int ksl_flush(UTIL_ANY_ARGUMENTS);

/// Sets an environment variable, as `_putenv` does with `"NAME=value"`. `"NAME="` removes the
/// variable. Returns 0, or -1. This process and its children see the change. An assignment of more
/// than 32,766 bytes gives -1 with errno 22: lengths of the platform's call have 16 bits.
///
/// By design, the bytes are passed on unconverted. The runtime reads them in the process's ANSI
/// code page, not as UTF-8. So a UTF-8 value with a character beyond ASCII is stored as other
/// characters. With page 1252, `"\xC3\xA9"` is stored as U+00C3 U+00A9. Wide readers, such as this
/// library, read these two. A path that is stored like this names another file. Pass only ASCII,
/// call the platform's `SetEnvironmentVariableW`, or make UTF-8 the ANSI page (docs/windows.md).
///
///     ksl_putenv("AGENT_TRACE=1");
UTIL_API int ksl_putenv(const char* assignment);

UTIL_EXTERN_C_END

#endif
