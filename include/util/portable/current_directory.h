// The process's current directory.
#ifndef UTIL_PORTABLE_CURRENT_DIRECTORY_H
#define UTIL_PORTABLE_CURRENT_DIRECTORY_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Returns the current directory in UTF-8. It has no trailing backslash, unless it is a drive's
// root. Returns "" when the platform cannot tell or when out of memory.
//
// The library asks the platform by its ANSI call. Where that call replaced characters that its code
// page lacks, the result is the true name, which the wide call returns. Returns "" for a name that
// is no Unicode text (an unpaired surrogate).
//
// Any thread may call it, but the directory belongs to the whole process. By design, a directory of
// 260 bytes and more in the code page leaves the block that held its text allocated, at each call.
//     UTIL_CurrentDirectory()   // "C:\agent"
UTIL_API String UTIL_CurrentDirectory();

UTIL_EXTERN_C_END

#endif
