// File status and symbolic links.
#ifndef UTIL_PORTABLE_KSL_LINK_H
#define UTIL_PORTABLE_KSL_LINK_H

#include "util/export.h"

struct _stat64i32;  // <sys/stat.h>

UTIL_EXTERN_C_BEGIN

// The runtime's _wstat64i32 of a UTF-8 path, into `*record`. Returns 0, or -1 with errno. Both
// names are the same function; links get no treatment of their own. One trailing backslash is left
// out unless it makes a drive's root, and the runtime skips one more separator. By design a bare
// drive ("C:") is passed on unchanged and fails, unlike with UTF8_lstat.
//
// Every failure leaves `*record` zeroed. errno is 22 when a pointer is null or the path has
// 2,147,483,647 bytes or more, and 12 when out of memory.
//     struct _stat64i32 record;
//     ksl_stat("C:\\Windows\\", &record)   // 0
UTIL_API int ksl_lstat(const char* path, struct _stat64i32* record);
UTIL_API int ksl_stat(const char* path, struct _stat64i32* record);

// Return -1, whatever the arguments: links are not supported on this platform.
UTIL_API int ksl_readlink(UTIL_ANY_ARGUMENTS);
UTIL_API int ksl_read_link_chain(UTIL_ANY_ARGUMENTS);

UTIL_EXTERN_C_END

#endif
