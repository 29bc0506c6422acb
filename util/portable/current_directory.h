// The process's current directory.
#ifndef UTIL_PORTABLE_CURRENT_DIRECTORY_H
#define UTIL_PORTABLE_CURRENT_DIRECTORY_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// The current directory in UTF-8, without a trailing backslash unless it is a drive's root; "" when
// the platform cannot tell or memory runs out. Asked through the ANSI code page: characters that
// the page lacks come back as its best fit or "?", and bytes that mean nothing in it make the text
// "". May be called from any thread, but the directory belongs to the whole process. A directory of
// 260 bytes and more leaves the block that held its text allocated, at each call; this is meant.
//     UTIL_CurrentDirectory()   // "C:\agent"
UTIL_API String UTIL_CurrentDirectory();

UTIL_EXTERN_C_END

#endif
