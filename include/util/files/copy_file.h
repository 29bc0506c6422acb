/// @file
/// Copies the bytes of a file.
#ifndef UTIL_FILES_COPY_FILE_H
#define UTIL_FILES_COPY_FILE_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Copies the bytes of `source` to `destination`, which is created or overwritten.
///
/// Does not copy times and attributes. If `keepMode` is exactly 1, the destination then gets the
/// source's mode (on this platform: read-only or not). A failure of that is not reported.
///
/// Returns 0. Returns -1 if a file cannot be opened, if a transfer fails, or when out of memory.
/// After -1 the destination keeps the bytes copied until then. It never contains a byte that was
/// not read.
///
/// Opens both files, and empties the destination, before anything else. By design, a missing source
/// leaves an empty destination, and a file copied onto itself is emptied with result 0. The
/// source's size is read once, in 64 bits. Bytes added later are not copied. A source that becomes
/// shorter meanwhile returns -1.
///
/// Paths are UTF-8. Uses a buffer of up to 256 KiB of its own. Any thread may call it. Child
/// processes do not inherit the two descriptors. Raises nothing.
///
///     UTIL_copy("C:\\agent\\state.rec", "C:\\agent\\state.bak", 0)   // 0
UTIL_API int UTIL_copy(const char* source, const char* destination, char keepMode);

UTIL_EXTERN_C_END

#endif
