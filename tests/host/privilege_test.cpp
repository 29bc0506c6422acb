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

TEST(PrivilegeTest, SwitchesOnAndOff) {
    UTIL_ModifyPrivilege(SE_BACKUP_NAME, 1);
    const long handles = handle_count();
    for (const int enable : {0, 1, 0, -7}) {
        EXPECT_EQ(UTIL_ModifyPrivilege(SE_BACKUP_NAME, enable), 0u);
        EXPECT_EQ(is_enabled(SE_BACKUP_NAME), enable != 0);
    }
    const char* const null = nullptr;
    for (const char* unknown : {"SeNoSuchPrivilege", "", "\xE6\x97\xA5", null})
        EXPECT_EQ(UTIL_ModifyPrivilege(unknown, 1), DWORD(ERROR_NO_SUCH_PRIVILEGE));
    EXPECT_EQ(handle_count(), handles);
}

BOOL result;
BOOL fail() {
    SetLastError(77);
    return result;
}
BOOL WINAPI disturbing_close(HANDLE handle) {
    const BOOL closed = CloseHandle(handle);
    SetLastError(88);
    return closed;
}

TEST(PrivilegeTest, FailuresGiveTheSystemsCode) {
    const struct {
        const char* call;
        BOOL result;
        DWORD code;
        long leaked;
    } cases[] = {
        {"OpenProcessToken", FALSE, 77, 0},
        {"LookupPrivilegeValueA", FALSE, 77, 0},
        {"AdjustTokenPrivileges", FALSE, 77, 1},  // the token stays open, on purpose
        {"AdjustTokenPrivileges", TRUE, 0, 0},    // not all assigned, say
    };
    ImportPatch close("CloseHandle", disturbing_close);
    for (const auto& c : cases) {
        ImportPatch patch(c.call, fail);
        result = c.result;
        const long handles = handle_count();
        EXPECT_EQ(UTIL_ModifyPrivilege(SE_BACKUP_NAME, 1), c.code) << c.call;
        EXPECT_EQ(GetLastError(), 77u) << c.call;
        EXPECT_EQ(handle_count(), handles + c.leaked) << c.call;
    }
}

}  // namespace
