// The platform's file-system calls for UTF-8 paths. Each function converts its path and makes the
// wide call that its name stands for; what differs between them is said at each.
//
// Any thread may call them; they share nothing. Paths end at their NUL; a null path is a path that
// cannot be converted. When memory for the wide path runs out they raise the platform's _com_error,
// as UTIL_Utf8ToWideChar does.
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

// The runtime's _wopen: a descriptor, or -1 with errno as the runtime left it. flags and mode are
// the runtime's own. errno is 22 when the path cannot be converted.
//     int fd = UTF8_open("C:\\data\\r\xC3\xA9plica.dat", 0x8000, 0);   // binary, read-only
UTIL_API int UTF8_open(const char* path, int flags, int mode);

// _wunlink, _wchdir and _wchmod: 0, or -1 with the runtime's errno; -1 with errno untouched when
// the path cannot be converted.
UTIL_API int UTF8_unlink(const char* path);
UTIL_API int UTF8_chdir(const char* path);
UTIL_API int UTF8_chmod(const char* path, int mode);

// _waccess: 0 when the access of mode (0 existence, 2 write, 4 read, 6 both) is allowed, else -1
// with the runtime's errno; 22 when the path cannot be converted.
UTIL_API int UTF8_access(const char* path, int mode);

// CreateDirectoryW and RemoveDirectoryW: 0, or -1 with errno 22 for every failure, of the
// conversion and of the call alike. That a directory exists, is not empty or has no parent is not
// told apart; this is meant.
UTIL_API int UTF8_mkdir(const char* path);
UTIL_API int UTF8_rmdir(const char* path);

// _wstat64i32 of the path, into *record: 0, or -1 with the runtime's errno. Both names are the same
// function; links are not looked at as such. A bare drive ("C:") means its root, "C:\"; one
// trailing backslash is left out unless it makes a root. -1 when the path cannot be converted, with
// errno 22 when a pointer is null and 12 when memory ran out.
//     struct _stat64i32 record;
//     UTF8_stat("C:\\Windows\\", &record)   // 0
UTIL_API int UTF8_lstat(const char* path, struct _stat64i32* record);
UTIL_API int UTF8_stat(const char* path, struct _stat64i32* record);

// FindFirstFileW: the search handle, to be closed with FindClose, or the invalid handle (-1) with
// the platform's last error. data receives the platform's record as it is; name the found file's
// name in UTF-8 with its NUL. The platform's names have up to 259 units, so name needs room for
// 778 bytes; it may be null when the name is not wanted. When the path or the name cannot be
// converted, or data is null, nothing stays open and the last error is 123.
UTIL_API void* UTF8_FindFirstFile(const char* path, struct _WIN32_FIND_DATAW* data, char* name);

// FindNextFileW on such a handle: 1 with data and name filled, or 0, at the end with last error 18;
// 123 when the name cannot be converted or data is null. The handle stays open in either case.
UTIL_API int UTF8_FindNextFile(void* handle, struct _WIN32_FIND_DATAW* data, char* name);

// GetDiskFreeSpaceExW, in bytes: free for the caller, in total, and free in total; any of the three
// may be null. Not 0 on success; 0 with the platform's last error, or when the path cannot be
// converted.
UTIL_API int UTF8_GetDiskFreeSpaceEx(const char* path, uint64_t* available, uint64_t* total,
                                     uint64_t* free);

// CopyFileW: not 0 on success; 0 with the platform's last error, or when either path cannot be
// converted. With failIfExists not 0 an existing destination is a failure.
UTIL_API int UTF8_CopyFile(const char* source, const char* destination, int failIfExists);

UTIL_EXTERN_C_END

#endif
