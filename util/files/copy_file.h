// Copying the bytes of a file.
#ifndef UTIL_FILES_COPY_FILE_H
#define UTIL_FILES_COPY_FILE_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Copies the bytes of source to destination, which is created or overwritten; times and attributes
// are not copied. With keepMode exactly 1 the destination then gets the source's mode (on this
// platform: read-only or not), a failure of which is not reported. Returns 0, or -1 when a file
// cannot be opened, a transfer fails, or memory runs out.
//
// Both files are opened before anything is looked at, the destination emptied: a missing source
// leaves an empty destination, and a file copied onto itself is emptied, with result 0. Both are
// meant. As many bytes are copied as the source has after that, beyond 4 GB as well: what is added
// meanwhile is left out, and a source that shrinks meanwhile gives -1. On -1 the destination keeps
// what was copied until then; it never holds a byte that was not read.
//
// Paths are UTF-8. Takes 256 KiB of memory at most, which is this call's own: any thread may call
// it. Nothing is raised.
//     UTIL_copy("C:\\agent\\state.rec", "C:\\agent\\state.bak", 0)   // 0
UTIL_API int UTIL_copy(const char* source, const char* destination, char keepMode);

UTIL_EXTERN_C_END

#endif
