// The directory for temporary files.
#ifndef UTIL_HOST_TEMP_DIRECTORY_H
#define UTIL_HOST_TEMP_DIRECTORY_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Returns the platform's directory for temporary files in UTF-8, without its trailing backslash.
//
// Returns the environment variable SystemRoot instead when the platform names none, when what it
// names is no directory, has 260 bytes or more with its backslash, or is a name that the code page
// of file calls cannot hold exactly: the platform is asked by its ANSI calls. Returns "." when
// SystemRoot is not set, and "" when out of memory. Any thread may call it, but the environment
// belongs to the whole process.
//     UTIL_GetTempDirectory()   // "C:\Temp"
UTIL_API String UTIL_GetTempDirectory();

UTIL_EXTERN_C_END

#endif
