// Privileges of the process.
#ifndef UTIL_HOST_PRIVILEGE_H
#define UTIL_HOST_PRIVILEGE_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Switches the named privilege of this process on (enable not 0) or off. 0, or the system's error
// code: 1313 for a name that it does not know (also null), 8 when memory runs out. Success means
// that the system took the request: for a privilege that the process does not hold at all it gives
// 0, too, with last error 1300; this is meant. The name is plain text like "SeBackupPrivilege".
// Any thread may call it; the privilege is the whole process's.
//
// When the switch itself fails the process's token stays open, one handle a time; this is meant.
//     UTIL_ModifyPrivilege("SeBackupPrivilege", 1)   // 0
UTIL_API unsigned long UTIL_ModifyPrivilege(const char* name, int enable);

UTIL_EXTERN_C_END

#endif
