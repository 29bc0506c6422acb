#include "util/host/privilege.h"

#include <gtest/gtest.h>

#include "support/handle_count.h"
#include "support/import_patch.h"

using util_test::handle_count;
using util_test::ImportPatch;

namespace {

bool is_enabled(const char* name) {
    PRIVILEGE_SET wanted = {};
    wanted.PrivilegeCount = 1;
    LookupPrivilegeValueA(nullptr, name, &wanted.Privilege[0].Luid);
    HANDLE token = nullptr;
    BOOL enabled = FALSE;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token);
    EXPECT_TRUE(PrivilegeCheck(token, &wanted, &enabled)) << GetLastError();
    CloseHandle(token);
    return enabled;
}

BOOL result;
BOOL answer() {
    SetLastError(77);
    return result;
}
TEST(PrivilegeTest, SwitchesOnAndOffOrGivesTheSystemsCode) {
    UTIL_ModifyPrivilege(SE_BACKUP_NAME, 1);
    const long handles = handle_count();
    for (const int enable : {0, 1, 0, -7}) {
        EXPECT_EQ(UTIL_ModifyPrivilege(SE_BACKUP_NAME, enable), 0u);
        EXPECT_EQ(is_enabled(SE_BACKUP_NAME), enable != 0);
    }
    for (const char* name :
         {"SeNoSuchPrivilege", "\xE6\x97\xA5", static_cast<const char*>(nullptr)})
        EXPECT_EQ(UTIL_ModifyPrivilege(name, 1), DWORD(ERROR_NO_SUCH_PRIVILEGE));

    for (const char* call : {"OpenProcessToken", "LookupPrivilegeValueA"}) {
        const ImportPatch patch(call, answer);
        EXPECT_EQ(UTIL_ModifyPrivilege(SE_BACKUP_NAME, 1), 77u) << call;
    }
    const ImportPatch patch("AdjustTokenPrivileges", answer);
    result = TRUE;  // and yet the last error says: not all assigned
    EXPECT_EQ(UTIL_ModifyPrivilege(SE_BACKUP_NAME, 1), 0u);
    EXPECT_EQ(handle_count(), handles);
    result = FALSE;
    EXPECT_EQ(UTIL_ModifyPrivilege(SE_BACKUP_NAME, 1), 77u);
    EXPECT_EQ(handle_count(), handles + 1) << "the token stays open, on purpose";
}

}  // namespace
