#include "util/host/system.h"

#include "util/internal/windows.h"
// after the platform's header
#include <cfgmgr32.h>

#include <string>
#include <utility>

#include "util/internal/encoding.h"
#include "util/internal/error_text.h"
#include "util/internal/guarded.h"
#include "util/internal/path.h"
#include "util/internal/scoped_handle.h"
#include "util/portable/environment.h"

static_assert(sizeof(UTIL_TimeOfDay) == 8, "two numbers of 32 bits");

namespace {

// On failure, `code` is the system's error code.
bool look_up_privilege(const char* name, LUID& luid, DWORD& code) {
    code = ERROR_NOT_ENOUGH_MEMORY;
    return util::guarded(false, [&] {
        std::string ansi_name;
        const bool is_name = util::utf8_to_ansi(name, ansi_name);
        if (is_name && LookupPrivilegeValueA(nullptr, ansi_name.c_str(), &luid)) return true;
        code = is_name ? GetLastError() : ERROR_NO_SUCH_PRIVILEGE;
        return false;
    });
}

int rescan_failed(const char* format, String& message) {
    const DWORD code = GetLastError();
    return util::guarded(-1, [&] {
        message = String::format(format, code);
        return -1;
    });
}

// Returns false for a path that the page cannot hold.
bool is_directory(const std::string& path) {
    std::string ansi_path;
    if (!util::utf8_to_ansi(path.c_str(), ansi_path, util::Page::files)) return false;
    const DWORD attributes = GetFileAttributesA(ansi_path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

String temp_directory() {
    constexpr DWORD room = 260;
    char named[room] = {};  // stays empty if the path is longer
    wchar_t twin[room] = {};
    const DWORD length = GetTempPathA(room, named);
    GetTempPathW(room, twin);
    std::string path;
    if (length < 1 || length > room || !util::ansi_to_utf8(named, twin, path, util::Page::files) ||
        !is_directory(path)) {
        path = util::environment_value(L"SystemRoot").str();
        if (path.empty()) path = ".";
    }
    if (util::ends_in_backslash(path)) path.pop_back();
    return String(std::move(path));
}

}  // namespace

unsigned long UTIL_ModifyPrivilege(const char* name, int enable) {
    util::WinHandle token;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY,
                          token.receive())) {
        return GetLastError();
    }
    TOKEN_PRIVILEGES request = {};
    request.PrivilegeCount = 1;
    request.Privileges[0].Attributes = enable ? SE_PRIVILEGE_ENABLED : 0;
    DWORD code;
    if (!look_up_privilege(name, request.Privileges[0].Luid, code)) return code;
    if (!AdjustTokenPrivileges(token.get(), FALSE, &request, 0, nullptr, nullptr)) {
        token.release();  // stays open, as the header says
        return GetLastError();
    }
    return 0;
}

int UTIL_GetTimeOfDay(UTIL_TimeOfDay* time) {
    if (!time) return -1;
    SYSTEMTIME now;
    GetSystemTime(&now);
    time->seconds = now.wSecond;
    time->microseconds = now.wMilliseconds * 1000;
    return 0;
}

void UTIL_FormatMessage(String& out) {
    const DWORD code = GetLastError();
    util::guarded([&] { out = String(); }, [&] { out = String(util::error_text(code)); });
}

int UTIL_SetupPnPRescan(String& message) {
    DEVINST root = 0;
    if (CM_Locate_DevNode_ExA(&root, nullptr, CM_LOCATE_DEVNODE_NORMAL, nullptr) != CR_SUCCESS) {
        return rescan_failed("UTIL_SetupPnPRescan::CM_Locate_DevNode_Ex failed with error: %lu",
                             message);
    }
    if (CM_Reenumerate_DevNode_Ex(root, CM_REENUMERATE_SYNCHRONOUS, nullptr) != CR_SUCCESS) {
        return rescan_failed(
            "UTIL_SetupPnPRescan::CM_Reenumerate_DevNode_Ex failed with error: %lu", message);
    }
    return 0;
}

String UTIL_GetTempDirectory() {
    return util::guarded([] { return String(); }, temp_directory);
}
