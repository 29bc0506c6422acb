/// @file
/// The platform's file-system calls for UTF-8 paths. Each function converts its path and makes the
/// wide call that its comment names.
///
/// Any thread may call these functions. They share no state. A path ends at its NUL. A path cannot
/// be converted if it is null, has 2,147,483,647 bytes or more, or if out of memory for the
/// conversion. Invalid UTF-8 becomes U+FFFD. If out of memory for the wide path, the functions
/// raise the platform's `_com_error`, as UTIL_Utf8ToWideChar does.
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

/// Opens a file with the runtime's `_wopen`. Returns a descriptor, or -1 with errno as the runtime
/// set it. `flags` and `mode` are the runtime's own. Sets errno to 22 if the path cannot be
/// converted.
///
///     int fd = UTF8_open("C:\\data\\r\xC3\xA9plica.dat", 0x8000, 0);   // binary, read-only
UTIL_API int UTF8_open(const char* path, int flags, int mode);

/// Deletes a file with `_wunlink`. Returns 0, or -1 with the runtime's errno. Returns -1 with errno
/// unchanged if the path cannot be converted.
UTIL_API int UTF8_unlink(const char* path);

/// Changes the current directory with `_wchdir`. Returns as UTF8_unlink does.
UTIL_API int UTF8_chdir(const char* path);

/// Changes the access mode of a file with `_wchmod`. Returns as UTF8_unlink does.
UTIL_API int UTF8_chmod(const char* path, int mode);

/// Checks access with `_waccess`. Returns 0 if the access of `mode` (0 existence, 2 write, 4 read,
/// 6 both) is allowed, else -1 with the runtime's errno. Sets errno to 22 if the path cannot be
/// converted.
UTIL_API int UTF8_access(const char* path, int mode);

/// Creates or removes a directory with `CreateDirectoryW` or `RemoveDirectoryW`. Returns 0. Returns
/// -1 with errno 22 for every failure, of the conversion and of the call. By design, errno does not
/// tell whether a directory exists, is not empty or has no parent.
/// @{
UTIL_API int UTF8_mkdir(const char* path);
UTIL_API int UTF8_rmdir(const char* path);
/// @}

/// Stores the status of `path` in `*record`, as the runtime's `_wstat64i32` does. Both names are
/// the same function: links are not treated specially. Returns 0, or -1 with the runtime's errno.
///
/// A bare drive (`"C:"`) means its root directory. Ignores one trailing backslash, unless it makes
/// a root.
///
/// Every failure leaves `*record` zeroed. Returns -1 if the path cannot be converted. errno is 22
/// if a pointer is null, and 12 if out of memory for a changed path.
///
///     struct _stat64i32 record;
///     UTF8_stat("C:\\Windows\\", &record)   // 0
/// @{
UTIL_API int UTF8_lstat(const char* path, struct _stat64i32* record);
UTIL_API int UTF8_stat(const char* path, struct _stat64i32* record);
/// @}

/// Starts a search with `FindFirstFileW`. Returns the search handle, which the caller closes with
/// `FindClose`. Returns the invalid handle (-1) with the platform's last error on failure.
///
/// `data` receives the platform's record unchanged. `name` receives the name of the found file in
/// UTF-8 with its NUL. The platform's names have up to 259 units, so `name` needs room for 778
/// bytes. `name` may be null. If the path or the name cannot be converted, or `data` is null,
/// returns the invalid handle with last error 123 and leaves nothing open.
UTIL_API void* UTF8_FindFirstFile(const char* path, struct _WIN32_FIND_DATAW* data, char* name);

/// Continues a search with `FindNextFileW`. Returns 1 with `data` and `name` filled, or 0. The last
/// error is 18 at the end. It is 123 if the name cannot be converted or `data` is null. The handle
/// stays open in every case.
UTIL_API int UTF8_FindNextFile(void* handle, struct _WIN32_FIND_DATAW* data, char* name);

/// Stores sizes in bytes with `GetDiskFreeSpaceExW`: free for the caller, in total, and free in
/// total. Any of the three pointers may be null. Returns a value other than 0 on success, and 0
/// with the platform's last error on failure. Returns 0 if the path cannot be converted.
UTIL_API int UTF8_GetDiskFreeSpaceEx(const char* path, uint64_t* available, uint64_t* total,
                                     uint64_t* free);

/// Copies a file with `CopyFileW`. Returns a value other than 0 on success, and 0 with the
/// platform's last error on failure. Returns 0 if a path cannot be converted. If `failIfExists` is
/// not 0, an existing destination is a failure.
UTIL_API int UTF8_CopyFile(const char* source, const char* destination, int failIfExists);

UTIL_EXTERN_C_END

#endif
