// Whether the failover cluster, or any other service, is installed.
#ifndef UTIL_HOST_CLUSTER_H
#define UTIL_HOST_CLUSTER_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

UTIL_EXTERN_C_BEGIN

#ifdef __cplusplus
// Returns whether a service of that name exists on this machine, running or not. The platform
// ignores case. Returns false, with the platform's last error, when it does not exist, when the
// service manager cannot be asked and when out of memory. The name is UTF-8; one that the ANSI code
// page cannot hold exactly, or in 32,766 bytes, is no service. Any thread may call both functions.
//     UTIL_IsClustered("Spooler")   // true where printing is installed
UTIL_API bool UTIL_IsClustered(const String& name);
#endif

// The same for "ClusSvc", the failover cluster.
UTIL_API bool UTIL_IsCluster(void);

UTIL_EXTERN_C_END

#endif
