// Where the volume manager of Veritas is installed on this machine, and in which version.
#ifndef UTIL_HOST_VOLUME_MANAGER_H
#define UTIL_HOST_VOLUME_MANAGER_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

UTIL_EXTERN_C_BEGIN

// Both look at the keys "SOFTWARE\VERITAS\Volume Manager M.N" under HKEY_LOCAL_MACHINE, for M from
// 9 down to 2 and N from 9 down to 0; the first that may be read, which is the highest version,
// counts. A key for 10.0 or 1.0 is never found. Any thread may call them.

// Writes the version as "M.N" with its NUL into out, which needs room for 4 bytes, and returns
// true. False, with out untouched, when no key is found; false for a null out in any case.
//     char version[4];
//     UTIL_GetVeritasVersion(version)   // true, version is "4.1"
UTIL_API bool UTIL_GetVeritasVersion(char* out);

#ifdef __cplusplus
// The text of that key's value "InstallDir", of whatever type it is, in path: true. Its ANSI form
// may take 260 bytes. The key is opened with full access, so this needs administrative rights; that
// is meant. False, with path untouched:
// - without any version key: message is untouched;
// - when the key cannot be opened: message is "SS: Could not Veritas Key, please ensure that Volume
//   Manager 3.0 is installed in the registry", worded as it always was;
// - when the value cannot be read: message is "SS: Could not find path to Veritas directory in the
//   registry, error num = %lu" with the system's code (2 for a missing value, 234 for a long one);
// - when memory runs out: message is untouched or one of the above.
UTIL_API bool UTIL_GetVeritasPath(String& path, String& message);
#endif

UTIL_EXTERN_C_END

#endif
