// Where the volume manager of Veritas is installed on this machine, and in which version.
#ifndef UTIL_HOST_VOLUME_MANAGER_H
#define UTIL_HOST_VOLUME_MANAGER_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

UTIL_EXTERN_C_BEGIN

// Both look at the keys "SOFTWARE\VERITAS\Volume Manager M.N" under HKEY_LOCAL_MACHINE, for M from
// 9 down to 2 and N from 9 down to 0. The first that may be read counts, which is the highest
// version. A key for 10.0 or 1.0 is never found. Any thread may call them.

// Writes the version as "M.N" with its NUL into `out`, which needs room for 4 bytes, and returns
// true. Returns false, with `out` unchanged, when no key is found. Returns false for a null `out`.
//     char version[4];
//     UTIL_GetVeritasVersion(version)   // true, version is "4.1"
UTIL_API bool UTIL_GetVeritasVersion(char* out);

#ifdef __cplusplus
// Reads the text of that key's value "InstallDir", of whatever type it is, into `path`. Returns
// true on success. The text's form in the ANSI code page may take 260 bytes. The result is the
// stored text in UTF-8, also where the platform's ANSI call replaced characters that the page
// lacks. By design the key is opened with full access, so this needs administrative rights.
//
// Returns false, with `path` unchanged:
// - without any version key: `message` is unchanged;
// - when the key cannot be opened: `message` is "SS: Could not Veritas Key, please ensure that
//   Volume Manager 3.0 is installed in the registry", by design without "find";
// - when the value cannot be read: `message` is "SS: Could not find path to Veritas directory in
//   the registry, error num = %lu" with the system's code (2 for a missing value, 234 for a long
//   one);
// - when out of memory: `message` is unchanged or one of the above.
UTIL_API bool UTIL_GetVeritasPath(String& path, String& message);
#endif

UTIL_EXTERN_C_END

#endif
