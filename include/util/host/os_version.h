/// @file
/// Which Windows this is: version, edition, coarse name, emulation. Also the version of a module.
///
/// Each call asks the system, which reports the version that it shows to this program. Windows 8.1
/// and later report 6.2 to a program whose manifest does not name them. Any thread may call these
/// functions.
#ifndef UTIL_HOST_OS_VERSION_H
#define UTIL_HOST_OS_VERSION_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

UTIL_EXTERN_C_BEGIN

/// @name Version and edition
/// @{

/// Stores the version, the service pack, the product type and the R2 flag.
///
/// The product type is 1 for a workstation, 2 for a domain controller and 3 for a server. The R2
/// flag is 1 on 5.2 with the R2 update, and on 6.1 unless it is a workstation. Otherwise it is 0.
///
/// A null pointer skips that number. Returns 0, or -1 with nothing stored if the system does not
/// answer. Example:
///
///     unsigned long major, minor;
///     UTIL_GetOsVersion(&major, &minor, NULL, NULL, NULL, NULL)   // 0; 6 and 1
UTIL_API int UTIL_GetOsVersion(unsigned long* major, unsigned long* minor, unsigned short* spMajor,
                               unsigned short* spMinor, unsigned short* productType,
                               unsigned short* r2);

/// Returns 1 if the version is `major.minor` or later, and 0 if it is not. Returns -1 if the
/// system does not answer. Example:
///
///     UTIL_IsOSVersionAtLeast(5, 2)   // 1 on 6.1
UTIL_API int UTIL_IsOSVersionAtLeast(unsigned long major, unsigned long minor);

/// Returns 1 if the system matches all arguments, and 0 if it does not. Returns -1 if the system
/// does not answer.
///
/// The major and minor version are always compared. Each other argument may be 0xFFFF for "any". By
/// design, a product type matches if the system's is the same or higher: 2 also matches a server,
/// which is 3. Example:
///
///     UTIL_IsOSVersionEqualTo(5, 2, 0xFFFF, 0xFFFF, 0xFFFF, 1)   // 1 on Windows Server 2003 R2
UTIL_API int UTIL_IsOSVersionEqualTo(unsigned long major, unsigned long minor,
                                     unsigned short spMajor, unsigned short spMinor,
                                     unsigned short productType, unsigned short r2);

/// Returns 1 if this is an Enterprise or Datacenter edition, and 0 if it is not. Returns -1 if the
/// system does not answer.
UTIL_API int UTIL_IsEnterpriseEdition(void);

/// Returns 1 if the major version is at least 5, the minor version is at least 2 and there is a
/// service pack. Otherwise returns 0. Returns -1 if the system does not answer.
///
/// By design, the minor version is compared whatever the major version is: 6.0 and 6.1 give 0.
UTIL_API int UTIL_IsWin2k3SP_1_Or_Later(void);

/// Returns whether shadow copies can be moved to another host. True if UTIL_IsEnterpriseEdition or
/// UTIL_IsWin2k3SP_1_Or_Later returns 1.
UTIL_API bool UTIL_IsVSSTransportableSupported(void);

/// Returns 1: all features are present.
UTIL_API int UTIL_getFeatureSet(void);

#ifdef __cplusplus
/// Stores a name for the platform in `out` and returns 0.
///
/// The names are "Windows 3.1 " with the major version, "Windows95", "Windows98", "Windows NT" (up
/// to 4), "Windows 2000" (5.0), "Windows XP" (5.1) and "Windows 2003" (5.2). All others are
/// "Windows": 6.0 and later, and a system that does not answer. `out` is unchanged when out of
/// memory. Example:
///
///     String name;
///     UTIL_getPlatform(name);   // "Windows" on 6.1
UTIL_API int UTIL_getPlatform(String& out);
#endif

/// @}
/// @name 32-bit emulation on 64-bit Windows
/// @{

/// Sets `*flag` to 1 if this process runs under 32-bit emulation, and otherwise to 0.
///
/// Returns 0, or the system's error code if the query fails. Returns 87 if `flag` is null. On a
/// system without emulation, it stores 0 and returns 0. Example:
///
///     unsigned char emulated;
///     UTIL_getIsWow64(&emulated)   // 0; emulated is 0 in a 64-bit program
UTIL_API unsigned long UTIL_getIsWow64(unsigned char* flag);

/// Turns the redirection of the system directory off for the calling thread, and stores the former
/// state in `*oldValue`.
///
/// Returns 0, with the platform's last error, if the switch fails or the system lacks it. Otherwise
/// returns another number. If the process is not emulated, or if this cannot be found out, there is
/// nothing to do: `*oldValue` is then unchanged, and the result is 1.
///
/// By design, a call that reaches the switch keeps one more reference to kernel32.dll. That module
/// never leaves a process. Example:
///
///     void* state = NULL;
///     if (UTIL_VornWow64DisableWow64FsRedirection(&state)) {
///         // C:\Windows\System32 is the 64-bit one
///         UTIL_VornWow64RevertWow64FsRedirection(state);
///     }
UTIL_API int UTIL_VornWow64DisableWow64FsRedirection(void** oldValue);

/// Turns the redirection back on with the state that UTIL_VornWow64DisableWow64FsRedirection
/// stored. The result and the reference to kernel32.dll are as there.
UTIL_API int UTIL_VornWow64RevertWow64FsRedirection(void* oldValue);

/// @}
/// @name Version of a module
/// @{

/// Writes the file version of the module at the UTF-8 `path` into `out` and returns `out`, which
/// must have room for 30 bytes.
///
/// If the module does not exist or has no version, sets `out` to "" and returns an empty text that
/// the library owns. Returns null if an argument is null. The file is found through the ANSI code
/// page: a path that the page cannot hold exactly, or in 32,766 bytes, is a missing file. So is any
/// path when out of memory.
///
/// By design, since callers compare these texts: the fourth number is the third part of the version
/// times 65536, as a signed number. The fourth part does not appear. Also by design, each call for
/// a module with a version resource leaves the block for it allocated. Example:
///
///     char text[30];
///     UTIL_GetModuleVersion("C:\\agent\\util.dll", text)   // "1.2.3.196608" for 1.2.3.4
UTIL_API const char* UTIL_GetModuleVersion(const char* path, char* out);

/// @}

UTIL_EXTERN_C_END

#endif
