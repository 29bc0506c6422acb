/// @file
/// Deletes a file, read-only or not.
#ifndef UTIL_FILES_DELETE_FILE_H
#define UTIL_FILES_DELETE_FILE_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Deletes a file.
///
/// Returns 0, or -1 with the runtime's errno, as UTF8_unlink() does. A read-only file returns -1
/// with errno 13. `path` is UTF-8. Any thread may call it. Raises nothing.
///
///     UTIL_delete("C:\\agent\\state.bak")   // 0
UTIL_API int UTIL_delete(const char* path);

/// Makes a file writable, then deletes it.
///
/// Returns 0, or -1 with the errno of the step that failed. If the second step fails, the file
/// stays writable. `path` is UTF-8. Any thread may call it. Raises nothing.
///
///     UTIL_delete_readonly("C:\\agent\\state.bak")   // 0
UTIL_API int UTIL_delete_readonly(const char* path);

UTIL_EXTERN_C_END

#endif
