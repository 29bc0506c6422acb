// The version stamp of a program or DLL.
#ifndef UTIL_HOST_MODULE_VERSION_H
#define UTIL_HOST_MODULE_VERSION_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Writes the file version of the module at the UTF-8 path into `out`, which must have room for 30
// bytes, and returns `out`. When the module is missing or carries no version, sets `out` to "" and
// returns an empty text that the library keeps. Returns null when an argument is null. The file is
// found through the ANSI code page: a path that the page cannot hold exactly, or in 32,766 bytes,
// is a missing file.
//
// By design, since callers compare these texts: the fourth number is the third part of the version
// times 65536, as a signed number. The fourth part does not appear. By design, too, each call that
// finds a version leaves the block that held it allocated. Any thread may call it.
//     char text[30];
//     UTIL_GetModuleVersion("C:\\agent\\util.dll", text)   // "1.2.3.196608" for 1.2.3.4
UTIL_API const char* UTIL_GetModuleVersion(const char* path, char* out);

UTIL_EXTERN_C_END

#endif
