// Looking for new hardware.
#ifndef UTIL_HOST_DEVICE_RESCAN_H
#define UTIL_HOST_DEVICE_RESCAN_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Lets the device manager rescan the whole device tree and waits until it is done: 0, with message
// as it was. -1 when it fails, with a message for users that names the failed call and, meant as it
// is, the platform's last error instead of the device manager's own result; -1 with message
// unspecified when memory for it runs out. Any thread may call it.
//     String message;
//     if (UTIL_SetupPnPRescan(message) != 0) log(message);
//     // "UTIL_SetupPnPRescan::CM_Locate_DevNode_Ex failed with error: 5"
UTIL_API int UTIL_SetupPnPRescan(String& message);

UTIL_EXTERN_C_END

#endif
