#include "util/host/module_version.h"

#include <gtest/gtest.h>

#include <string>

#include "support/built_file.h"
#include "support/scratch_directory.h"

using util_test::built_file;
using util_test::to_wide;

namespace {

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
