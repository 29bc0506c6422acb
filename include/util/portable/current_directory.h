/// @file
/// The process's current directory.
#ifndef UTIL_PORTABLE_CURRENT_DIRECTORY_H
#define UTIL_PORTABLE_CURRENT_DIRECTORY_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

/// Returns the current directory in UTF-8. It has no trailing backslash, unless it is a drive's
/// root. Returns `""` if the platform's call fails, or if out of memory.
///
/// Calls the platform's ANSI function. If that replaces characters that its code page lacks, the
/// result is the true name, which the wide function returns. Returns `""` for a name that is not
/// valid Unicode (an unpaired surrogate).
///
/// Any thread may call this function, but the directory belongs to the whole process. By design,
/// each call leaks one block if the directory has 260 bytes or more in the code page: the block
/// that held its text.
///
///     UTIL_CurrentDirectory()   // "C:\agent"
UTIL_API String UTIL_CurrentDirectory();

UTIL_EXTERN_C_END

#endif
