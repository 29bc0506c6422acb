/// @file
/// Which products are installed on this machine: services, the failover cluster, the volume manager
/// of Veritas, the snapshot tool.
///
/// Any thread may call these functions.
#ifndef UTIL_HOST_INSTALLED_PRODUCTS_H
#define UTIL_HOST_INSTALLED_PRODUCTS_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

UTIL_EXTERN_C_BEGIN

#ifdef __cplusplus
/// Returns whether this machine has a service of that name, running or not. `name` is UTF-8. Case
/// does not matter.
///
/// Returns false, with the platform's last error, if there is no such service, if the service
/// manager cannot be opened, or when out of memory. A name that the ANSI code page cannot hold
/// exactly, or in 32,766 bytes, is no service. Example:
///
///     UTIL_IsClustered("Spooler")   // true where printing is installed
UTIL_API bool UTIL_IsClustered(const String& name);
#endif

/// Returns whether the failover cluster is installed: UTIL_IsClustered for "ClusSvc".
UTIL_API bool UTIL_IsCluster(void);

/// Writes the version of the volume manager as "M.N" with its NUL into `out`, which needs room for
/// 4 bytes, and returns true.
///
/// Looks at the keys `SOFTWARE\VERITAS\Volume Manager M.N` under HKEY_LOCAL_MACHINE, for M from 9
/// down to 2 and N from 9 down to 0. The first that can be read counts. So the result is the
/// highest version. A key for 10.0 or 1.0 is never found.
///
/// Returns false, with `out` unchanged, if no key is found or when out of memory. Returns false for
/// a null `out`. Example:
///
///     char version[4];
///     UTIL_GetVeritasVersion(version)   // true, version is "4.1"
UTIL_API bool UTIL_GetVeritasVersion(char* out);

#ifdef __cplusplus
/// Reads where the volume manager is installed into `path` and returns true. This is the value
/// "InstallDir", of any type, of the key that UTIL_GetVeritasVersion finds.
///
/// The text may take 260 bytes in the ANSI code page. The result is the stored text in UTF-8, even
/// if the platform's ANSI call replaced characters that the page lacks. By design, the key is
/// opened with full access, which needs administrative rights.
///
/// Returns false, with `path` unchanged:
/// - if there is no version key: `message` is unchanged;
/// - if the key cannot be opened: `message` is "SS: Could not Veritas Key, please ensure that
///   Volume Manager 3.0 is installed in the registry", by design without "find";
/// - if the value cannot be read: `message` is "SS: Could not find path to Veritas directory in
///   the registry, error num = N" with the system's code N (2 for a missing value, 234 for a long
///   one);
/// - when out of memory: `message` is unchanged or one of the above.
UTIL_API bool UTIL_GetVeritasPath(String& path, String& message);

/// Finds the command-line tool that takes the storage array's snapshots, stores its path in `out`
/// and returns 0. Does not run it. Returns -1 and sets `out` to "" if there is none, or when out of
/// memory.
///
/// The first of these that exists is the result:
/// 1. "tssnap.exe" beside the running program, in the directory of Tools::find_location;
/// 2. `C:\Program Files\Vorn\Halcyra Vexsnap\vexsnap.exe`;
/// 3. `C:\Program Files\Vorn\Halcyra Vexsnap for Win2K\vexsnap.exe`;
/// 4. "vexsnap.exe" along PATH, as Tools::absolute_pathname searches it.
///
/// Example:
///
///     String tool;
///     UTIL_GetHalcVexsnapFileName(tool)   // 0, tool is "C:\agent\bin\tssnap.exe"
UTIL_API int UTIL_GetHalcVexsnapFileName(String& out);
#endif

UTIL_EXTERN_C_END

#endif
