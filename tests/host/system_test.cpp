#include "util/host/system.h"

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <string>

#include "support/environment_change.h"
#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
// after the platform's header
#include <cfgmgr32.h>

using util_test::EnvironmentChange;
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

BOOL success;
BOOL answer() {
    SetLastError(77);
    return success;
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
    success = TRUE;  // and yet the last error says: not all assigned
    EXPECT_EQ(UTIL_ModifyPrivilege(SE_BACKUP_NAME, 1), 0u);
    EXPECT_EQ(handle_count(), handles);
    success = FALSE;
    EXPECT_EQ(UTIL_ModifyPrivilege(SE_BACKUP_NAME, 1), 77u);
    EXPECT_EQ(handle_count(), handles + 1) << "the token stays open, on purpose";
}

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

String message_of(DWORD code) {
    String text = "before";
    SetLastError(code);
    UTIL_FormatMessage(text);
    EXPECT_EQ(GetLastError(), code);
    return text;
}

DWORD WINAPI foreign_message(DWORD flags, LPCVOID, DWORD code, DWORD language, LPWSTR buffer, DWORD,
                             va_list*) {
    EXPECT_EQ(flags, 0x1300u) << "allocate, from system, ignore inserts";
    EXPECT_TRUE(code == 5 && language == 0x400);
    const wchar_t words[] = L"\u00E4\U0001F600\u65E5\u65E5\u65E5\u20AC%1\r\n";
    *reinterpret_cast<void**>(buffer) =
        std::memcpy(LocalAlloc(0, sizeof words), words, sizeof words);
    return static_cast<DWORD>(std::wcslen(words));
}
HLOCAL WINAPI disturbing_free(HLOCAL block) {
    SetLastError(88);
    return LocalFree(block);
}

TEST(ErrorMessageTest, IsTheSystemsTextInUtf8) {
    EXPECT_EQ(message_of(ERROR_ACCESS_DENIED).view().substr(0, 6), "Access");
    EXPECT_EQ(message_of(0x2FEDCBA9), "") << "no such code";
    const util_test::ImportPatch format("FormatMessageW", foreign_message),
        release("LocalFree", disturbing_free);
    EXPECT_EQ(message_of(5),
              "\xC3\xA4\xF0\x9F\x98\x80\xE6\x97\xA5\xE6\x97\xA5\xE6\x97\xA5\xE2\x82\xAC%1\r\n");
}

TEST(TempDirectoryTest, IsTheSystemsWhenThatIsADirectory) {
    const util_test::ScratchDirectory scratch;
    const EnvironmentChange root(L"SystemRoot", L"D:\\root\\");
    scratch.directory("A");
    const std::string cases[][2] = {
        {scratch.path(), scratch.path()},
        {scratch.directory("\xC3\xA4"), scratch / "\xC3\xA4"},
        {scratch.directory("\xEF\xBC\xA1"), "D:\\root"},  // not in the ANSI page; best fit: A
        {scratch / "missing", "D:\\root"},
        {scratch.file("file"), "D:\\root"},
        {scratch / std::string(240, 'x'), "D:\\root"},  // too long for the buffer
    };
    for (const auto& [temp, result] : cases) {
        const EnvironmentChange change(L"TMP", util_test::to_wide(temp).c_str());
        EXPECT_EQ(UTIL_GetTempDirectory(), result) << temp;
    }
    const util_test::ImportPatch patch("GetTempPathA", util_test::fails<0>);
    const EnvironmentChange foreign(L"SystemRoot", L"E:\\\u65E5\\\\");
    EXPECT_EQ(UTIL_GetTempDirectory(), "E:\\\xE6\x97\xA5\\");
    const EnvironmentChange unset(L"SystemRoot", nullptr);
    EXPECT_EQ(UTIL_GetTempDirectory(), ".");
}

TEST(TimeOfDayTest, SecondsOfTheMinute) {
    const util_test::ImportPatch patch(
        "GetSystemTime", +[](SYSTEMTIME* time) { *time = {2011, 5, 2, 17, 12, 34, 56, 789}; });
    UTIL_TimeOfDay now;
    EXPECT_EQ(UTIL_GetTimeOfDay(&now), 0);
    EXPECT_EQ(now.seconds, 56);
    EXPECT_EQ(now.microseconds, 789000);
    EXPECT_EQ(UTIL_GetTimeOfDay(nullptr), -1);
}

}  // namespace
