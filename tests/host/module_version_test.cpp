#include "util/host/module_version.h"

#include <gtest/gtest.h>

#include <string>

#include "support/built_file.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"

namespace {

const std::string stamped = util_test::built_file("stamped.dll");  // 1.2.3.4

void copy_stamped(const std::string& path) {
    ASSERT_TRUE(
        CopyFileW(util_test::to_wide(stamped).c_str(), util_test::to_wide(path).c_str(), TRUE));
}

TEST(ModuleVersionTest, FourthNumberIsTheThirdPartShifted) {
    const util_test::ScratchDirectory scratch;
    const std::string accented = scratch / "\xC3\xA4.dll";
    copy_stamped(accented);
    char out[30];
    EXPECT_EQ(UTIL_GetModuleVersion(stamped.c_str(), out), out);
    EXPECT_STREQ(out, "1.2.3.196608");
    EXPECT_STREQ(UTIL_GetModuleVersion(accented.c_str(), out), "1.2.3.196608");
    // Stamped 65535.65534.40000.7; the longest text there is.
    EXPECT_STREQ(UTIL_GetModuleVersion(util_test::built_file("stamped_high.dll").c_str(), out),
                 "65535.65534.40000.-1673527296");
}

// The path gives no version: out is emptied and the result is the library's own empty text.
void expect_no_version(const std::string& path) {
    char out[30] = "before";
    const char* text = UTIL_GetModuleVersion(path.c_str(), out);
    EXPECT_STREQ(text, "") << path;
    EXPECT_NE(text, out) << path;
    EXPECT_STREQ(out, "") << path;
}

TEST(ModuleVersionTest, WithoutAVersion) {
    const util_test::ScratchDirectory scratch;
    const std::string not_in_page = scratch / "\xE6\x97\xA5.dll";
    copy_stamped(not_in_page);
    for (const std::string& path :
         {util_test::built_file("stamped_badly.dll"), util_test::built_file("version_probe.exe"),
          scratch.file("text.dll", "no module"), scratch / "missing", not_in_page}) {
        expect_no_version(path);
    }
    char out[30] = "before";
    EXPECT_EQ(UTIL_GetModuleVersion(nullptr, out), nullptr);
    EXPECT_EQ(UTIL_GetModuleVersion(stamped.c_str(), nullptr), nullptr);
    EXPECT_STREQ(out, "before");
}

int fail() {
    return 0;
}

TEST(ModuleVersionTest, EveryFailingStep) {
    for (const char* call :
         {"GetFileVersionInfoSizeA", "malloc", "GetFileVersionInfoA", "VerQueryValueA"}) {
        util_test::ImportPatch patch(call, fail);
        expect_no_version(stamped);
    }
}

}  // namespace
