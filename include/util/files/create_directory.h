/// @file
/// Creates a directory alone, or with all its parents.
#ifndef UTIL_FILES_CREATE_DIRECTORY_H
#define UTIL_FILES_CREATE_DIRECTORY_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

UTIL_EXTERN_C_BEGIN

#ifdef __cplusplus
/// Creates one directory. Its parent must exist.
///
/// Returns 0 and sets `*created` to true if it created the directory. Returns 183 if a file or a
/// directory of that name exists, 8 when out of memory, and otherwise the platform's code of the
/// failed creation. `created` may be null, and is never set to false.
///
/// By design, a name that anybody has open, or has as current directory, returns 0 without setting
/// `*created`, not 183: the function opens the name without sharing for a moment to find out
/// whether it exists.
///
/// `path` is UTF-8. Any thread may call it. Raises nothing.
///
///     bool created = false;
///     UTIL_makeNewNTDir("C:\\mnt", &created)   // 0 and true, the next time 183
UTIL_API unsigned long UTIL_makeNewNTDir(const String& path, bool* created);
#endif

/// Creates a directory and all its missing parents.
///
/// Returns 0, or -1 for every other outcome. By design, that includes a directory that exists
/// already. The platform wants a full path with backslashes (`"C:\a\b"`), and is called with the
/// process's ANSI code page. So the result is -1 for a path that the page cannot hold exactly, or
/// that takes more than 32,766 bytes there.
///
/// `path` is UTF-8. Null returns -1. Any thread may call it. Raises nothing.
///
///     UTIL_CreateDirectory("C:\\mnt\\a\\b")   // 0, the next time -1
UTIL_API int UTIL_CreateDirectory(const char* path);

UTIL_EXTERN_C_END

#endif
