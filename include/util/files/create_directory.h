// Creating directories: one that may be there already, or one with all its parents.
#ifndef UTIL_FILES_CREATE_DIRECTORY_H
#define UTIL_FILES_CREATE_DIRECTORY_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

UTIL_EXTERN_C_BEGIN

#ifdef __cplusplus
// Creates one directory; its parent must exist. Returns 0 and sets `*created` to true when it did.
// Returns 183 when a file or a directory of that name exists, else the platform's code of the
// failed creation, or 8 when out of memory. `created` may be null, and is never set to false.
//
// By design a name that anybody has open, or has as current directory, gives 0 without setting
// `*created`, not 183: the function asks by opening the name without sharing for a moment.
//
// `path` is UTF-8. Any thread may call it; nothing is raised.
//     bool created = false;
//     UTIL_makeNewNTDir("C:\\mnt", &created)   // 0 and true, the next time 183
UTIL_API unsigned long UTIL_makeNewNTDir(const String& path, bool* created);
#endif

// Creates a directory and all its missing parents. Returns 0, or -1 for every other outcome. By
// design that includes a directory that exists already. The platform wants a full path with
// backslashes ("C:\a\b"), and is called with the process's ANSI code page: returns -1 for a path
// that the page cannot hold exactly or in 32,766 bytes.
//
// `path` is UTF-8; null gives -1. Any thread may call it; nothing is raised.
//     UTIL_CreateDirectory("C:\\mnt\\a\\b")   // 0, the next time -1
UTIL_API int UTIL_CreateDirectory(const char* path);

UTIL_EXTERN_C_END

#endif
