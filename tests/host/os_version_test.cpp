#include "util/host/os_version.h"

#include "support/process.h"
#include "support/test.h"

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

}  // namespace
