#include "util/host/temp_directory.h"

#include <gtest/gtest.h>

#include <string>

#include "support/environment_change.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"

using util_test::EnvironmentChange;

namespace {

TEST(TempDirectoryTest, IsTheSystemsWhenThatIsADirectory) {
    const util_test::ScratchDirectory scratch;
    const EnvironmentChange root(L"SystemRoot", L"D:\\root\\");
    const std::string fallback = "D:\\root";
    const struct {
        std::string temp, result;
    } cases[] = {
        {scratch.path(), scratch.path()},
        {scratch.path() + "\\", scratch.path()},
        {scratch.directory("\xC3\xA4"), scratch / "\xC3\xA4"},
        {scratch.directory("\xE6\x97\xA5"), fallback},  // not in the ANSI page
        {scratch / "missing", fallback},
        {scratch.file("file"), fallback},
        {scratch / std::string(240, 'x'), fallback},  // too long for the buffer
        {scratch / std::string(400, 'x'), fallback},  // too long for the system
    };
    for (const auto& c : cases) {
        const EnvironmentChange temp(L"TMP", util_test::to_wide(c.temp).c_str());
        EXPECT_EQ(UTIL_GetTempDirectory(), c.result) << c.temp;
    }
}

TEST(TempDirectoryTest, WithoutOneSystemRootThenTheDot) {
    const std::wstring long_root(5000, L'r');
    const struct {
        const wchar_t* root;
        std::string result;
    } cases[] = {
        {L"E:\\\u65E5\\\\", "E:\\\xE6\x97\xA5\\"},
        {long_root.c_str(), std::string(5000, 'r')},
        {nullptr, "."},
    };
    util_test::ImportPatch patch(
        "GetTempPathA", +[]() -> DWORD { return 0; });
    for (const auto& c : cases) {
        const EnvironmentChange root(L"SystemRoot", c.root);
        EXPECT_EQ(UTIL_GetTempDirectory(), c.result);
    }
}

}  // namespace
