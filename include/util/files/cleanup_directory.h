/// @file
/// Deletes the files of a directory.
#ifndef UTIL_FILES_CLEANUP_DIRECTORY_H
#define UTIL_FILES_CLEANUP_DIRECTORY_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Deletes the files of a directory and returns the number of its subdirectories. Neither enters
/// nor removes a subdirectory.
///
/// Files that cannot be deleted (read-only, in use) stay and are not reported. If `removeDir` is
/// not 0, then removes the directory itself if it is empty. A failure of this is not reported
/// either, and it is tried also if the directory could not be listed. If the directory could be
/// listed, a result of 0 means that only files that cannot be deleted are left.
///
/// If `path` itself is a link, its target is emptied. Links inside the directory are not followed.
///
/// `path` is UTF-8. Returns 0 and does nothing for a null or empty path, or when out of memory. Any
/// thread may call it. Raises nothing.
///
///     UTIL_cleanupDir("C:\\mnt\\r1", 1)   // 0, and C:\mnt\r1 is gone if it held only files
UTIL_API int UTIL_cleanupDir(const char* path, int removeDir);

UTIL_EXTERN_C_END

#endif
