#include "util/host/device_rescan.h"

#include <gtest/gtest.h>

#include "support/import_patch.h"
// after the platform's header
#include <cfgmgr32.h>

namespace {

CONFIGRET located, rescanned;

CONFIGRET WINAPI locate(PDEVINST node, DEVINSTID_A id, ULONG flags, HMACHINE machine) {
    EXPECT_TRUE(!id && flags == 0 && !machine);
    *node = 42;
    SetLastError(70);
    return located;
}
CONFIGRET WINAPI rescan(DEVINST node, ULONG flags, HMACHINE machine) {
    EXPECT_TRUE(node == 42 && flags == 1 && !machine);
    SetLastError(0xFFFFFFFF);
    return rescanned;
}

TEST(DeviceRescanTest, TheMessageNamesTheCallAndTheLastError) {
    const util_test::ImportPatch locate_patch("CM_Locate_DevNode_ExA", locate),
        rescan_patch("CM_Reenumerate_DevNode_Ex", rescan);
    String message = "before";
    EXPECT_EQ(UTIL_SetupPnPRescan(message), 0);
    EXPECT_EQ(message, "before");
    rescanned = 51;
    EXPECT_EQ(UTIL_SetupPnPRescan(message), -1);
    EXPECT_EQ(message,
              "UTIL_SetupPnPRescan::CM_Reenumerate_DevNode_Ex failed with error: 4294967295");
    located = 19;
    EXPECT_EQ(UTIL_SetupPnPRescan(message), -1);
    EXPECT_EQ(message, "UTIL_SetupPnPRescan::CM_Locate_DevNode_Ex failed with error: 70");
}

}  // namespace
