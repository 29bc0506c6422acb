/// @file
/// A lock between processes, on a file in the directory that they share.
///
/// The lock is one byte of the file `"lockfile.lck"` directly in the directory. The file is created
/// if it is missing. It is never deleted, and its content means nothing. The lock excludes other
/// processes and other handles of this one. The platform releases it when its holder ends, however
/// that happens. Whoever may open the file can hold the lock without limit, so use a directory of
/// your own.
///
/// The caller owns the handle and the platform's `OVERLAPPED` record. Both belong to one lock, and
/// to one thread at a time. Neither function raises anything.
///
///     HANDLE handle;
///     OVERLAPPED record;
///     if (UTIL_LockFilePrivate("C:\\agent", &handle, &record)) {
///         ...   // alone among all who ask for this directory's lock
///         UTIL_UnLockFilePrivate(handle, &record);
///     }
#ifndef UTIL_FILES_LOCK_FILE_H
#define UTIL_FILES_LOCK_FILE_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

struct _OVERLAPPED;  // <windows.h>

UTIL_EXTERN_C_BEGIN

#ifdef __cplusplus
/// Takes the lock. Waits without limit while another holds it.
///
/// Returns true with `*handle` open, or false with `*handle` invalid (-1).
///
/// An attempt fails if the file cannot be opened or locked at all, as in a missing directory. By
/// design, it is repeated 1000000 milliseconds (16 minutes and 40 seconds) later, up to five
/// attempts: false is returned more than an hour after the call. The system's code is not kept.
/// Returns false at once if a pointer is null, or when out of memory.
///
/// `directory` is UTF-8, without a trailing backslash. Empty means the root of the current drive.
/// `record` receives the platform's record of the lock.
UTIL_API bool UTIL_LockFilePrivate(String directory, void** handle, struct _OVERLAPPED* record);
#endif

/// Releases the lock and closes the handle, also if the release fails.
///
/// Returns true if both succeed. Returns true and does nothing for the invalid handle. The caller's
/// handle is not reset: it must not be used again.
UTIL_API bool UTIL_UnLockFilePrivate(void* handle, struct _OVERLAPPED* record);

UTIL_EXTERN_C_END

#endif
