// The last component of a path.
#ifndef UTIL_HOST_BASE_NAME_H
#define UTIL_HOST_BASE_NAME_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Writes the last part of path between slashes into out, with its NUL: "" for nothing but slashes,
// for the empty path and for null. Only "/" separates; a backslash is a character like any other.
// out must have room for that part, which strlen(path) + 1 bytes always hold, and may be path's own
// buffer; nothing is written when it is null. Paths may be of any length. Any thread may call it.
//
// Meant as it is: the result is always -1 and tells nothing.
//     char name[16];
//     UTIL_basename(name, "a/b/c/");    // "c"
//     UTIL_basename(name, "a\\b\\c");   // "a\b\c"
UTIL_API int UTIL_basename(char* out, const char* path);

// The same.
UTIL_API int UTIL_CDPbasename(char* out, const char* path);

UTIL_EXTERN_C_END

#endif
