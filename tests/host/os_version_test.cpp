#include "util/host/os_version.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/built_file.h"
#include "support/import_patch.h"
#include "support/process.h"
#include "support/scratch_directory.h"

using util_test::built_file;
using util_test::ImportPatch;
using util_test::to_wide;

namespace {

// Wine shows a program the Windows that is set for its name; Windows itself has no such setting.
TEST(OsVersionTest, NamesTheWindowsThatTheSystemShows) {
    if (!GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version")) GTEST_SKIP();
    const struct {
        const char *version, *line, *program = "version_probe.exe";
    } cases[] = {
        {"win31", "3.10 SP0.0 type 0 r2 0 \"Windows 3.1 3\" win2k3sp1 0"},
        {"winxp", "5.1 SP3.0 type 1 r2 0 \"Windows XP\" win2k3sp1 0"},
        // Wine 8 has the types of these two the wrong way round.
        {"win7", "6.1 SP1.0 type 3 r2 1 \"Windows\" win2k3sp1 0"},
        {"win2008r2", "6.1 SP1.0 type 1 r2 0 \"Windows\" win2k3sp1 0"},
        {"win10", "6.2 SP0.0 type 1 r2 0 \"Windows\" win2k3sp1 0"},
        {"win10", "10.0 SP0.0 type 1 r2 0 \"Windows\" win2k3sp1 0", "manifest_probe.exe"},
    };
    for (const auto& c : cases) {
        const std::string key = std::string("Software\\Wine\\AppDefaults\\") + c.program;
        RegSetKeyValueA(HKEY_CURRENT_USER, key.c_str(), "Version", REG_SZ, c.version,
                        static_cast<DWORD>(std::strlen(c.version) + 1));
        EXPECT_EQ(util_test::output_of(c.program), std::string(c.line) + "\n") << c.version;
        RegDeleteTreeA(HKEY_CURRENT_USER, key.c_str());
    }
}

// kernel32 as a test wants it.
struct Kernel {
    bool has_question;
    BOOL answers, emulated;
    bool loads, has_switch;
} kernel;
std::string log;  // what was done with it

BOOL WINAPI is_wow64(HANDLE, BOOL* answer) {
    *answer = kernel.emulated;
    SetLastError(77);
    return kernel.answers;
}
BOOL WINAPI switch_redirection(int* state) {
    log += "call " + std::to_string(++*state) + " ";
    return 5;
}
void* WINAPI get_entry(HMODULE, const char* name) {
    if (name == std::string("IsWow64Process"))
        return kernel.has_question ? reinterpret_cast<void*>(is_wow64) : nullptr;
    log += name + std::string(" ");
    return kernel.has_switch ? reinterpret_cast<void*>(switch_redirection) : nullptr;
}
HMODULE WINAPI load(const char* name) {
    return kernel.loads ? GetModuleHandleA(name) : nullptr;
}
BOOL WINAPI free_module(HMODULE) {
    log += "free ";
    return TRUE;
}

TEST(Wow64Test, EveryStepOfTheSwitch) {
    const std::string disable = "Wow64DisableWow64FsRedirection ";
    const std::string revert = "Wow64RevertWow64FsRedirection ";
    const std::string calls = disable + "call 1 " + revert + "call 2 ";
    const struct {
        Kernel kernel;
        DWORD flag_error;
        int flag, switched;
        std::string log;
    } cases[] = {
        {{false, 1, 1, true, true}, 0, 0, 1, ""},  // a system without emulation
        {{true, 0, 1, true, true}, 77, 0, 1, ""},
        {{true, 1, 0, true, true}, 0, 0, 1, ""},
        {{true, 1, 1, false, true}, 0, 1, 0, ""},
        {{true, 1, 1, true, false}, 0, 1, 0, disable + "free " + revert + "free "},
        {{true, 1, 1, true, true}, 0, 1, 5, calls},  // the switch's own result; the module stays
        {{true, 1, 2, true, true}, 0, 0, 5, calls},  // the flag wants exactly 1
    };
    unsigned char flag = 7;
    EXPECT_EQ(UTIL_getIsWow64(&flag), 0u);
    EXPECT_EQ(flag, 0) << "as it really is";
    EXPECT_EQ(UTIL_getIsWow64(nullptr), DWORD(ERROR_INVALID_PARAMETER));
    const ImportPatch entry("GetProcAddress", get_entry), library("LoadLibraryA", load),
        release("FreeLibrary", free_module);
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        kernel = c.kernel;
        EXPECT_EQ(UTIL_getIsWow64(&flag), c.flag_error);
        EXPECT_EQ(flag, c.flag);

        int state = 0;
        log.clear();
        EXPECT_EQ(UTIL_VornWow64DisableWow64FsRedirection(reinterpret_cast<void**>(&state)),
                  c.switched);
        EXPECT_EQ(UTIL_VornWow64RevertWow64FsRedirection(&state), c.switched);
        EXPECT_EQ(log, c.log);
    }
}

// "none" for the library's own empty text, which goes with an emptied buffer.
std::string version_of(const std::string& path) {
    char out[30] = "before";
    const char* const text = UTIL_GetModuleVersion(path.c_str(), out);
    EXPECT_STREQ(text, out) << path;
    return text == out ? out : std::string("none") + text;
}

TEST(ModuleVersionTest, FourthNumberIsTheThirdPartShifted) {
    const util_test::ScratchDirectory scratch;
    const std::string stamped = built_file("stamped.dll");  // 1.2.3.4
    const std::string cases[][2] = {
        {stamped, "1.2.3.196608"},
        {scratch / "\xC3\xA4.dll", "1.2.3.196608"},
        {scratch / "\xE6\x97\xA5.dll", "none"},                             // not in the ANSI page
        {built_file("stamped_high.dll"), "65535.65534.40000.-1673527296"},  // 65535.65534.40000.7
        {built_file("stamped_badly.dll"), "none"},
        {built_file("host_test.exe"), "none"},  // has no version
        {scratch / "missing", "none"},
    };
    for (const int copy : {1, 2})
        CopyFileW(to_wide(stamped).c_str(), to_wide(cases[copy][0]).c_str(), TRUE);
    for (const auto& [path, version] : cases)
        EXPECT_EQ(version_of(path), version) << path;
    char out[30] = "before";
    EXPECT_EQ(UTIL_GetModuleVersion(nullptr, out), nullptr);
    EXPECT_EQ(UTIL_GetModuleVersion(stamped.c_str(), nullptr), nullptr);
    EXPECT_STREQ(out, "before");
}

}  // namespace
