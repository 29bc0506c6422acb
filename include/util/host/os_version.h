// Which Windows this is: version, service pack, edition and a coarse name.
//
// The system is asked afresh at each call, and it answers what it lets this program see: without a
// manifest that names them, Windows 8.1 and later call themselves 6.2. Any thread may call these.
#ifndef UTIL_HOST_OS_VERSION_H
#define UTIL_HOST_OS_VERSION_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

UTIL_EXTERN_C_BEGIN

// Stores the version, the service pack, the product type (1 workstation, 2 domain controller,
// 3 server) and the R2 flag: 1 on 5.2 with the R2 update and on 6.1 that is not a workstation,
// else 0. A null pointer is a number not wanted. 0, or -1 with nothing stored when the system does
// not answer.
//     unsigned long major, minor;
//     UTIL_GetOsVersion(&major, &minor, nullptr, nullptr, nullptr, nullptr)   // 0; 6 and 1
UTIL_API int UTIL_GetOsVersion(unsigned long* major, unsigned long* minor, unsigned short* spMajor,
                               unsigned short* spMinor, unsigned short* productType,
                               unsigned short* r2);

// Whether the version is major.minor or later: 1 or 0; -1 when the system does not answer.
//     UTIL_IsOSVersionAtLeast(5, 2)   // 1 on 6.1
UTIL_API int UTIL_IsOSVersionAtLeast(unsigned long major, unsigned long minor);

// Whether this is exactly that Windows: 1 or 0; -1 when the system does not answer. Major and
// minor version are always compared; each other argument may be 0xFFFF for "any". Meant as it is:
// the product type need only be reached, so that asking for 2 also holds on a server, 3.
//     UTIL_IsOSVersionEqualTo(5, 2, 0xFFFF, 0xFFFF, 0xFFFF, 1)   // 1 on Windows Server 2003 R2
UTIL_API int UTIL_IsOSVersionEqualTo(unsigned long major, unsigned long minor,
                                     unsigned short spMajor, unsigned short spMinor,
                                     unsigned short productType, unsigned short r2);

// Whether this is an Enterprise or Datacenter edition: 1 or 0; -1 when the system does not answer.
UTIL_API int UTIL_IsEnterpriseEdition(void);

// 1 when the major version is at least 5, the minor version at least 2 and there is a service pack,
// else 0; -1 when the system does not answer. Meant as it is: the minor version counts whatever the
// major version is, so 6.0 and 6.1 give 0.
UTIL_API int UTIL_IsWin2k3SP_1_Or_Later(void);

// Whether shadow copies can be moved to another host: true when either of the two above gives 1.
UTIL_API bool UTIL_IsVSSTransportableSupported(void);

// Always 1: all features are there.
UTIL_API int UTIL_getFeatureSet(void);

#ifdef __cplusplus
// A name for the platform; always returns 0. "Windows 3.1 " and the major version, "Windows95",
// "Windows98", "Windows NT" (up to 4), "Windows 2000", "Windows XP", "Windows 2003" (5.2); and
// "Windows" for everything else, 6.0 and later among it, and when the system does not answer.
//     String name;
//     UTIL_getPlatform(name);   // "Windows" on 6.1
UTIL_API int UTIL_getPlatform(String& out);
#endif

UTIL_EXTERN_C_END

#endif
