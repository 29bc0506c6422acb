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

}  // namespace
