// A lock between processes, on a file in the directory that they share.
#ifndef UTIL_FILES_LOCK_FILE_H
#define UTIL_FILES_LOCK_FILE_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

struct _OVERLAPPED;  // <windows.h>

// The lock is one byte of the file "lockfile.lck" directly in the directory. The file is created
// when missing, never deleted, and its content means nothing. The lock excludes other processes and
// other handles of this one. The platform releases it when its holder ends, however that happens.
// Whoever may open the file can hold the lock without limit, so use a directory of your own.
//
// The caller owns the handle and the platform's OVERLAPPED record; both belong to one lock, and to
// one thread at a time. Neither function raises anything.
//
//     HANDLE handle;
//     OVERLAPPED record;
//     if (UTIL_LockFilePrivate("C:\\agent", &handle, &record)) {
//         ...   // alone among all who ask for this directory's lock
//         UTIL_UnLockFilePrivate(handle, &record);
//     }

UTIL_EXTERN_C_BEGIN

#ifdef __cplusplus
// Takes the lock, waiting without limit while another holds it. True with *handle open; false with
// *handle invalid (-1).
//
// An attempt fails when the file cannot be opened or locked at all, as in a missing directory. It
// is repeated 1000000 milliseconds (16 minutes and 40 seconds) later, up to five attempts: false
// comes more than an hour after the call. This is meant. The system's code is not kept. False comes
// at once when a pointer is null or memory runs out.
//
// directory is UTF-8, without a trailing backslash; empty means the root of the current drive.
UTIL_API bool UTIL_LockFilePrivate(String directory, void** handle, struct _OVERLAPPED* record);
#endif

// Releases the lock and closes the handle, also when the release fails. True when both succeed, and
// for the invalid handle, where there is nothing to do. The caller's handle is not reset: it must
// not be used again.
UTIL_API bool UTIL_UnLockFilePrivate(void* handle, struct _OVERLAPPED* record);

UTIL_EXTERN_C_END

#endif
