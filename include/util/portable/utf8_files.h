// The platform's file-system calls for UTF-8 paths. Each function converts its path and makes the
// wide call that its name stands for. The comments say what differs between them.
//
// Any thread may call them; they share nothing. A path ends at its NUL. A path cannot be converted
// when it is null, has 2,147,483,647 bytes or more, or when out of memory for the conversion.
// Invalid UTF-8 becomes U+FFFD. When out of memory for the wide path, the functions raise the
// platform's _com_error, as UTIL_Utf8ToWideChar does.
#ifndef UTIL_PORTABLE_UTF8_FILES_H
#define UTIL_PORTABLE_UTF8_FILES_H

#ifdef __cplusplus
#include <cstdint>
#else
#include <stdint.h>
#endif

#include "util/export.h"

struct _stat64i32;         // <sys/stat.h>
struct _WIN32_FIND_DATAW;  // <windows.h>

UTIL_EXTERN_C_BEGIN

// The runtime's _wopen. Returns a descriptor, or -1 with errno as the runtime left it. `flags` and
// `mode` are the runtime's own. Sets errno to 22 when the path cannot be converted.
//     int fd = UTF8_open("C:\\data\\r\xC3\xA9plica.dat", 0x8000, 0);   // binary, read-only
UTIL_API int UTF8_open(const char* path, int flags, int mode);

// _wunlink, _wchdir and _wchmod. Return 0, or -1 with the runtime's errno. Return -1 with errno
// unchanged when the path cannot be converted.
UTIL_API int UTF8_unlink(const char* path);
UTIL_API int UTF8_chdir(const char* path);
UTIL_API int UTF8_chmod(const char* path, int mode);

// _waccess. Returns 0 when the access of `mode` (0 existence, 2 write, 4 read, 6 both) is allowed,
// else -1 with the runtime's errno. Sets errno to 22 when the path cannot be converted.
UTIL_API int UTF8_access(const char* path, int mode);

// CreateDirectoryW and RemoveDirectoryW. Return 0, or -1 with errno 22 for every failure, of the
// conversion and of the call alike. By design they do not tell apart that a directory exists, is
// not empty or has no parent.
UTIL_API int UTF8_mkdir(const char* path);
UTIL_API int UTF8_rmdir(const char* path);

// _wstat64i32 of the path, into `*record`. Returns 0, or -1 with the runtime's errno. Both names
// are the same function; links get no treatment of their own. A bare drive ("C:") means its root,
// "C:\". One trailing backslash is left out unless it makes a root.
//
// Every failure leaves `*record` zeroed. Returns -1 when the path cannot be converted. errno is 22
// when a pointer is null, and 12 when out of memory for a changed path.
//     struct _stat64i32 record;
//     UTF8_stat("C:\\Windows\\", &record)   // 0
UTIL_API int UTF8_lstat(const char* path, struct _stat64i32* record);
UTIL_API int UTF8_stat(const char* path, struct _stat64i32* record);

// FindFirstFileW. Returns the search handle, to be closed with FindClose, or the invalid handle
// (-1) with the platform's last error. `data` receives the platform's record unchanged. `name`
// receives the found file's name in UTF-8 with its NUL. The platform's names have up to 259 units,
// so `name` needs room for 778 bytes. It may be null when the name is not wanted. When the path or
// the name cannot be converted, or `data` is null, nothing stays open and the last error is 123.
UTIL_API void* UTF8_FindFirstFile(const char* path, struct _WIN32_FIND_DATAW* data, char* name);

// FindNextFileW on such a handle. Returns 1 with `data` and `name` filled, or 0. The last error is
// 18 at the end, and 123 when the name cannot be converted or `data` is null. The handle stays open
// in either case.
UTIL_API int UTF8_FindNextFile(void* handle, struct _WIN32_FIND_DATAW* data, char* name);

// GetDiskFreeSpaceExW, in bytes: free for the caller, in total, and free in total. Any of the three
// may be null. Returns not 0 on success, and 0 with the platform's last error on failure. Returns 0
// when the path cannot be converted.
UTIL_API int UTF8_GetDiskFreeSpaceEx(const char* path, uint64_t* available, uint64_t* total,
                                     uint64_t* free);

// CopyFileW. Returns not 0 on success, and 0 with the platform's last error on failure. Returns 0
// when either path cannot be converted. With `failIfExists` not 0 an existing destination is a
// failure.
UTIL_API int UTF8_CopyFile(const char* source, const char* destination, int failIfExists);

UTIL_EXTERN_C_END

#endif
