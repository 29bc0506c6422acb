// Privileges of the process.
#ifndef UTIL_HOST_PRIVILEGE_H
#define UTIL_HOST_PRIVILEGE_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Switches the named privilege of this process on (`enable` not 0) or off. Returns 0, or the
// system's error code: 1313 for a name that it does not know, 8 when out of memory. A null name is
// unknown, and so is one that the ANSI code page cannot hold exactly or in 32,766 bytes. Success
// means that the system took the request: by design a privilege that the process does not hold at
// all gives 0, too, with last error 1300. The name is plain text like "SeBackupPrivilege". Any
// thread may call it; the privilege is the whole process's.
//
// By design the process's token stays open when the switch itself fails, one handle each time.
//     UTIL_ModifyPrivilege("SeBackupPrivilege", 1)   // 0
UTIL_API unsigned long UTIL_ModifyPrivilege(const char* name, int enable);

UTIL_EXTERN_C_END

#endif
