/// @file
/// File status and symbolic links.
#ifndef UTIL_PORTABLE_KSL_LINK_H
#define UTIL_PORTABLE_KSL_LINK_H

#include "util/export.h"

struct _stat64i32;  // <sys/stat.h>

UTIL_EXTERN_C_BEGIN

/// Stores the status of the UTF-8 `path` in `*record`, as the runtime's `_wstat64i32` does. Both
/// names are the same function: links are not treated specially. Returns 0, or -1 with errno.
///
/// Ignores one trailing backslash, unless it makes a drive's root. The runtime ignores one more
/// separator. By design, a bare drive (`"C:"`) is passed on unchanged and fails, unlike with
/// UTF8_lstat.
///
/// Every failure leaves `*record` zeroed. errno is 22 if a pointer is null or the path has
/// 2,147,483,647 bytes or more, and 12 if out of memory.
///
///     struct _stat64i32 record;
///     ksl_stat("C:\\Windows\\", &record)   // 0
/// @{
UTIL_API int ksl_lstat(const char* path, struct _stat64i32* record);
UTIL_API int ksl_stat(const char* path, struct _stat64i32* record);
/// @}

/// Returns -1 and ignores the arguments: links are not supported on this platform.
/// @{
UTIL_API int ksl_readlink(UTIL_ANY_ARGUMENTS);
UTIL_API int ksl_read_link_chain(UTIL_ANY_ARGUMENTS);
/// @}

UTIL_EXTERN_C_END

#endif
