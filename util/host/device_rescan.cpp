#include "util/host/device_rescan.h"

#include <new>

#include "util/internal/windows.h"
// after the platform's header
#include <cfgmgr32.h>

namespace {

int failed(const char* format, String& message) {
    const DWORD code = GetLastError();
    try {
        message = String::format(format, code);
    } catch (const std::bad_alloc&) {  // -1 says it
    }
    return -1;
}

}  // namespace

int UTIL_SetupPnPRescan(String& message) {
    DEVINST root = 0;
    if (CM_Locate_DevNode_ExA(&root, nullptr, CM_LOCATE_DEVNODE_NORMAL, nullptr) != CR_SUCCESS) {
        return failed("UTIL_SetupPnPRescan::CM_Locate_DevNode_Ex failed with error: %lu", message);
    }
    if (CM_Reenumerate_DevNode_Ex(root, CM_REENUMERATE_SYNCHRONOUS, nullptr) != CR_SUCCESS) {
        return failed("UTIL_SetupPnPRescan::CM_Reenumerate_DevNode_Ex failed with error: %lu",
                      message);
    }
    return 0;
}
