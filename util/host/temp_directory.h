// The directory for temporary files.
#ifndef UTIL_HOST_TEMP_DIRECTORY_H
#define UTIL_HOST_TEMP_DIRECTORY_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// The platform's directory for temporary files in UTF-8, without its trailing backslash. When the
// platform names none, or what it names is no directory or has 260 bytes or more with its
// backslash, the environment variable SystemRoot serves, and "." when that is not set. "" when
// memory runs out. The platform is asked through the ANSI code page: characters that the page lacks
// come as its best fit or "?", which mostly names no directory. Any thread may call it, but the
// environment belongs to the whole process.
//     UTIL_GetTempDirectory()   // "C:\Temp"
UTIL_API String UTIL_GetTempDirectory();

UTIL_EXTERN_C_END

#endif
