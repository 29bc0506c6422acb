#include "util/host/system.h"

#include <cwchar>
#include <list>

#include "mail/mail_child.h"
#include "support/built_file.h"
#include "support/cases.h"
#include "support/environment_change.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/host/installed_products.h"
#include "util/host/os_version.h"
// after the platform's header
#include <cfgmgr32.h>

using namespace util_test;

namespace {

namespace fs = std::filesystem;

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

// The codes of the two steps; the last error is 70 after the first and 4294967295 after the second.
Words rescan(CONFIGRET located, CONFIGRET rescanned) {
    const ImportPatch locate("CM_Locate_DevNode_ExA",
                             [=](PDEVINST node, DEVINSTID_A id, ULONG flags, HMACHINE machine) {
                                 EXPECT_TRUE(!id && flags == 0 && !machine);
                                 *node = 42;
                                 SetLastError(70);
                                 return located;
                             });
    const ImportPatch reenumerate("CM_Reenumerate_DevNode_Ex",
                                  [=](DEVINST node, ULONG flags, HMACHINE machine) {
                                      EXPECT_TRUE(node == 42 && flags == 1 && !machine);
                                      SetLastError(0xFFFFFFFF);
                                      return rescanned;
                                  });
    String message = "before";
    const int result = UTIL_SetupPnPRescan(message);
    return said(result, message);
}

// The text of the last error, which stays.
std::string message_of(DWORD code) {
    String text = "before";
    SetLastError(code);
    UTIL_FormatMessage(text);
    EXPECT_EQ(GetLastError(), code);
    return text.str();
}
// Returns the message if the platform's text is `text`.
std::string message_with(const std::string& text) {
    const std::wstring words = to_wide(text);
    const ImportPatch format("FormatMessageW", [&](DWORD flags, LPCVOID, DWORD code, DWORD language,
                                                   wchar_t** buffer, DWORD, void*) {
        EXPECT_EQ(flags, 0x1300u) << "allocate, from system, ignore inserts";
        EXPECT_TRUE(code == 5 && language == 0x400);
        const std::size_t size = (words.size() + 1) * sizeof(wchar_t);
        *buffer = static_cast<wchar_t*>(std::memcpy(LocalAlloc(0, size), words.c_str(), size));
        return static_cast<DWORD>(words.size());
    });
    return message_of(5);
}

Words time_of_day() {
    const ImportPatch patch("GetSystemTime",
                            [](SYSTEMTIME* time) { *time = {2011, 5, 2, 17, 12, 34, 56, 789}; });
    UTIL_TimeOfDay now;
    const int result = UTIL_GetTimeOfDay(&now);
    return said(result, now.seconds, now.microseconds, UTIL_GetTimeOfDay(nullptr));
}

// "none" for the library's own empty text, which goes with an emptied buffer.
std::string module_version(const char* path) {
    char out[30] = "before";
    const char* const text = UTIL_GetModuleVersion(path, out);
    EXPECT_STREQ(text, out);
    return text == out ? out : std::string("none") + text;
}
Words no_module_version(const char* path) {
    char out[30] = "before";
    return said(UTIL_GetModuleVersion(nullptr, out), UTIL_GetModuleVersion(path, nullptr), out);
}

struct World : CaseWorld {
    World() {
        values["d"] = scratch.path();
        values["here"] = built_file("");
        values["here"].pop_back();
        values["vendor"] = "C:\\Program Files\\Vorn";
    }
    ScratchDirectory scratch;
    void place(const std::string& path) {
        fs::create_directories(fs::path(path).parent_path());
        std::ofstream(path) << "x";
        placed.push_back(path);
    }
    // The program's path, in the ANSI page and as it is.
    void run_as(const std::string& ansi, const std::string& path) {
        ansi_program.emplace("GetModuleFileNameA", [=](HMODULE, char* out, DWORD room) {
            return std::snprintf(out, room, "%s", ansi.c_str());
        });
        program.emplace("GetModuleFileNameW", [=](HMODULE, wchar_t* out, DWORD room) {
            return lstrlenW(lstrcpynW(out, to_wide(path).c_str(), static_cast<int>(room)));
        });
    }
    ~World() override {
        std::error_code error;
        for (fs::path each : placed) {
            while (fs::remove(each, error))
                each = each.parent_path();  // stays if anything else is in it
        }
    }

    std::vector<std::string> placed;
    Environment environment;
    std::list<MailService> services;
    std::optional<ImportPatch> patch, ansi_program, program;
    const ImportPatch manager{"OpenSCManagerA",
                              [](const char* machine, const char* database, DWORD access) {
                                  EXPECT_STREQ(database, "ServicesActive");
                                  EXPECT_EQ(access, DWORD(GENERIC_READ));
                                  return OpenSCManagerA(machine, database, access);
                              }};
    const ImportPatch service{"OpenServiceA", [](SC_HANDLE opened, const char* name, DWORD access) {
                                  EXPECT_EQ(access, DWORD(GENERIC_READ));
                                  return OpenServiceA(opened, name, access);
                              }};
};

const Cases<World> cases(
    "host/system.cases",
    {
        call("directory", [](World& w, const std::string& name) { w.scratch.directory(name); }),
        call("file", [](World& w, const std::string& name) { w.scratch.file(name); }),
        call("copy",
             [](const std::string& from, const std::string& to) {
                 CopyFileW(to_wide(from).c_str(), to_wide(to).c_str(), TRUE);
             }),
        call("set", [](World& w, const std::string& name,
                       const std::string& value) { w.environment.set(name, value); }),
        call("refuse", [](World& w, const char* name) { w.patch.emplace(name, fails<0, 77>); }),

        call("temp_directory", "D:\\root | . | \"\"", UTIL_GetTempDirectory),
        call("snapshot_tool", "-1 \"\"", UTIL_GetHalcVexsnapFileName),
        call("place", &World::place),
        call("run_as", &World::run_as),
        call("install", [](World& w, const char* name) { w.services.emplace_back(name); }),
        call("is_installed", "false", UTIL_IsClustered),
        call("is_cluster", UTIL_IsCluster),
        call("time_of_day", time_of_day),
        call("message_start", "\"\"", [](DWORD code) { return message_of(code).substr(0, 6); }),
        call("message_with", message_with),
        call("privilege", "5 | 8 | 1313", UTIL_ModifyPrivilege)
            .keeps(1, "kernel handles", "AdjustTokenPrivileges"),
        call("is_enabled", is_enabled),
        call("rescan",
             "-1 before | -1 \"\" | -1 \"UTIL_SetupPnPRescan::CM_... failed with error: ...",
             rescan),
        call("is_wow64", "0 0",
             [] {
                 unsigned char flag = 7;
                 const unsigned long result = UTIL_getIsWow64(&flag);
                 return said(result, int(flag));
             }),
        call("module_version", "none", module_version).keeps(1, "heap blocks"),
        call("no_module_version", no_module_version),
    });

}  // namespace
