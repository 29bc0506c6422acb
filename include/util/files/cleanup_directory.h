// Emptying a directory of its files.
#ifndef UTIL_FILES_CLEANUP_DIRECTORY_H
#define UTIL_FILES_CLEANUP_DIRECTORY_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Deletes the files of a directory and returns the number of its subdirectories, which are neither
// entered nor removed. Files that cannot be deleted (read-only, in use) stay and are not reported.
// With removeDir not 0 the directory itself is then removed if it is empty, which is not reported
// either, and is tried also when the directory could not be listed. 0 for a directory that
// could be listed means that nothing but undeletable files can be left.
//
// Empties the target if `path` itself is a link. Follows no link inside the directory.
//
// path is UTF-8. Null and empty paths give 0 and touch nothing, as does want of memory. Any thread
// may call it; nothing is raised.
//     UTIL_cleanupDir("C:\\mnt\\r1", 1)   // 0, and C:\mnt\r1 is gone if it held files alone
UTIL_API int UTIL_cleanupDir(const char* path, int removeDir);

UTIL_EXTERN_C_END

#endif
