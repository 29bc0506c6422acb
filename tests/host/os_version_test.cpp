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
        {"win95", "4.0 SP0.0 type 0 r2 0 \"Windows95\" win2k3sp1 0"},
        {"win98", "4.10 SP0.0 type 0 r2 0 \"Windows98\" win2k3sp1 0"},
        {"winme", "4.90 SP0.0 type 0 r2 0 \"Windows98\" win2k3sp1 0"},
        {"nt40", "4.0 SP6.0 type 1 r2 0 \"Windows NT\" win2k3sp1 0"},
        {"win2k", "5.0 SP4.0 type 1 r2 0 \"Windows 2000\" win2k3sp1 0"},
        {"winxp", "5.1 SP3.0 type 1 r2 0 \"Windows XP\" win2k3sp1 0"},
        {"win2003", "5.2 SP2.0 type 3 r2 0 \"Windows 2003\" win2k3sp1 1"},
        {"win2008", "6.0 SP2.0 type 3 r2 0 \"Windows\" win2k3sp1 0"},
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

// The rest is what no setting brings about: editions, the R2 metric, versions that never were, a
// query that fails.
OSVERSIONINFOEXA running;
bool answers;
int r2_metric;

BOOL WINAPI get_version(OSVERSIONINFOA* record) {
    const DWORD size = record->dwOSVersionInfoSize;
    if (!answers || (size != 148 && size != 156)) return FALSE;
    std::memcpy(record, &running, size);
    return TRUE;
}
int WINAPI get_metric(int index) {
    return index == 89 ? r2_metric : 0;
}

class ReplacedVersionTest : public testing::Test {
  protected:
    static void run(DWORD major, DWORD minor, WORD service_pack = 0, BYTE type = 1) {
        answers = true;
        running = {};
        running.dwMajorVersion = major;
        running.dwMinorVersion = minor;
        running.wServicePackMajor = service_pack;
        running.wServicePackMinor = 7;
        running.wProductType = type;
    }
    ImportPatch m_version{"GetVersionExA", get_version}, m_metric{"GetSystemMetrics", get_metric};
};

TEST_F(ReplacedVersionTest, PlatformNamesAtTheEdgesOfTheTable) {
    const struct {
        DWORD platform, major, minor;
        const char* name;
    } cases[] = {
        {0, 0xFFFFFFFF, 0, "Windows 3.1 -1"},
        {1, 9, 0, "Windows95"},
        {1, 4, 1, "Windows98"},
        {2, 0, 7, "Windows NT"},
        {2, 5, 9, "Windows 2003"},
        {2, 10, 0, "Windows"},
        {3, 5, 1, "Windows"},
    };
    for (const auto& c : cases) {
        run(c.major, c.minor);
        running.dwPlatformId = c.platform;
        String name;
        EXPECT_EQ(UTIL_getPlatform(name), 0);
        EXPECT_EQ(name, c.name) << c.platform << " " << c.major << "." << c.minor;
    }
    EXPECT_EQ(UTIL_getFeatureSet(), 1);
}

TEST_F(ReplacedVersionTest, FlagsOfAnEdition) {
    const struct {
        DWORD major, minor;
        WORD service_pack, suite;
        BYTE type;
        int metric;
        unsigned short r2;
        int enterprise, service_pack_1;
    } cases[] = {
        {5, 2, 0, 0x0002, 3, 1, 1, 1, 0}, {5, 2, 1, 0x0080, 1, 70000, 1, 1, 1},
        {5, 2, 9, 0xFF7D, 3, 0, 0, 0, 1}, {5, 1, 1, 0x0082, 3, 1, 0, 1, 0},
        {5, 3, 1, 0, 3, 1, 0, 0, 1},      {4, 9, 1, 0, 3, 1, 0, 0, 0},
        {6, 0, 2, 0, 3, 1, 0, 0, 0},      {6, 1, 1, 0, 3, 0, 1, 0, 0},
        {6, 1, 0, 0, 2, 0, 1, 0, 0},      {6, 1, 0, 0, 1, 1, 0, 0, 0},
        {6, 2, 1, 0, 3, 1, 0, 0, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        run(c.major, c.minor, c.service_pack, c.type);
        running.wSuiteMask = c.suite;
        r2_metric = c.metric;
        unsigned long major, minor;
        unsigned short sp_major, sp_minor, type, r2;
        EXPECT_EQ(UTIL_GetOsVersion(&major, &minor, &sp_major, &sp_minor, &type, &r2), 0);
        EXPECT_TRUE(major == c.major && minor == c.minor && sp_major == c.service_pack &&
                    sp_minor == 7 && type == c.type);
        EXPECT_EQ(r2, c.r2);
        EXPECT_EQ(UTIL_IsOSVersionEqualTo(major, minor, sp_major, sp_minor, type, r2), 1);
        EXPECT_EQ(UTIL_IsEnterpriseEdition(), c.enterprise);
        EXPECT_EQ(UTIL_IsWin2k3SP_1_Or_Later(), c.service_pack_1);
        EXPECT_EQ(UTIL_IsVSSTransportableSupported(), c.enterprise || c.service_pack_1);
    }
    EXPECT_EQ(UTIL_GetOsVersion(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
}

TEST_F(ReplacedVersionTest, AtLeastIsUnsigned) {
    const struct {
        unsigned long major, minor;
        int result;
    } cases[] = {{4, 9, 1}, {5, 1, 1}, {5, 2, 1}, {5, 3, 0}, {6, 0, 0}, {~0ul, 0, 0}, {0, ~0ul, 1}};
    run(5, 2);
    for (const auto& c : cases)
        EXPECT_EQ(UTIL_IsOSVersionAtLeast(c.major, c.minor), c.result) << c.major << "." << c.minor;
}

TEST_F(ReplacedVersionTest, EqualToComparesWhatIsAskedFor) {
    constexpr unsigned short any = 0xFFFF;
    const struct {
        unsigned long major, minor;
        unsigned short sp_major, sp_minor, type, r2;
        int result;
    } cases[] = {
        {5, 2, any, any, any, any, 1}, {6, 2, any, any, any, any, 0}, {5, 1, any, any, any, any, 0},
        {any, 2, 1, 7, 2, 1, 0},       {5, any, 1, 7, 2, 1, 0},  // no wildcard for the version
        {5, 2, 0, any, any, any, 0},   {5, 2, 2, any, any, any, 0},   {5, 2, 1, any, any, any, 1},
        {5, 2, any, 6, any, any, 0},   {5, 2, any, 8, any, any, 0},   {5, 2, any, 7, any, any, 1},
        {5, 2, any, any, 1, any, 1},   {5, 2, any, any, 3, any, 0},  // the type is "at least"
        {5, 2, any, any, any, 0, 0},   {5, 2, any, any, any, 1, 1},   {5, 2, any, any, any, 2, 0},
    };
    run(5, 2, 1, 2);
    r2_metric = 1;
    for (const auto& c : cases) {
        EXPECT_EQ(UTIL_IsOSVersionEqualTo(c.major, c.minor, c.sp_major, c.sp_minor, c.type, c.r2),
                  c.result)
            << "case " << &c - cases;
    }
}

TEST_F(ReplacedVersionTest, AQueryThatFails) {
    answers = false;
    unsigned long number = 77;
    unsigned short word = 77;
    EXPECT_EQ(UTIL_GetOsVersion(&number, &number, &word, &word, &word, &word), -1);
    EXPECT_TRUE(number == 77 && word == 77);
    EXPECT_EQ(UTIL_IsOSVersionAtLeast(0, 0), -1);
    EXPECT_EQ(UTIL_IsOSVersionEqualTo(0, 0, 0, 0, 0, 0), -1);
    EXPECT_EQ(UTIL_IsEnterpriseEdition(), -1);
    EXPECT_EQ(UTIL_IsWin2k3SP_1_Or_Later(), -1);
    EXPECT_FALSE(UTIL_IsVSSTransportableSupported());
    String name = "before";
    EXPECT_EQ(UTIL_getPlatform(name), 0);
    EXPECT_EQ(name, "Windows");
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
