#include "util/files/create_directory.h"

#include <gtest/gtest.h>

#include "support/handle_count.h"
#include "support/scratch_directory.h"
#include "util/files/xr_directory.h"

using util_test::ScratchDirectory;

namespace {

TEST(MakeNewNtDirTest, TellsNewFromExistingFromInUse) {
    ScratchDirectory scratch;
    scratch.file("file", "");
    const HANDLE held = CreateFileA(scratch.directory("held").c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    const struct {
        const char* name;
        unsigned long result;
        bool created;
    } cases[] = {{"new", 0, true},
                 {"new", 183, false},
                 {"new\\gr\xC3\xBC\xE6\x96\x87\xF0\x9F\x98\x80\\", 0, true},
                 {"file", 183, false},
                 {"file\\", 183, false},
                 {"held", 0, false},
                 {"missing\\new", 3, false},
                 {"a<b", 123, false}};
    const long handles = util_test::handle_count();
    for (const auto& c : cases) {
        bool created = false;
        EXPECT_EQ(UTIL_makeNewNTDir(scratch / c.name, &created), c.result) << c.name;
        EXPECT_EQ(created, c.created) << c.name;
    }
    bool untouched = true;
    EXPECT_EQ(UTIL_makeNewNTDir(scratch / "new", &untouched), 183u);
    EXPECT_TRUE(untouched);
    EXPECT_EQ(UTIL_makeNewNTDir(scratch / "unasked", nullptr), 0u);
    EXPECT_EQ(util_test::handle_count(), handles);
    CloseHandle(held);
}

TEST(CreateDirectoryTest, MakesParentsAndRefusesTheRest) {
    ScratchDirectory scratch;
    EXPECT_EQ(UTIL_CreateDirectory((scratch / "a\\\xC3\xBC\\c").c_str()), 0);
    EXPECT_TRUE(XrDirectory::IsDirectory(scratch / "a\\\xC3\xBC\\c"));
    scratch.file("file", "");
    // What exists, slashes, a character that the page has not, and no places of their own.
    const std::string refused[] = {
        scratch / "a", scratch / "file", scratch / "x/y", scratch / "\xE2\x86\x92", "relative", "",
        "Q:\\missing"};
    for (const std::string& path : refused)
        EXPECT_EQ(UTIL_CreateDirectory(path.c_str()), -1) << path;
    EXPECT_EQ(UTIL_CreateDirectory(nullptr), -1);
    XrDirectory left(scratch.path());
    EXPECT_EQ(left.getDirectoryList(true, false)->size(), 2u);
}

}  // namespace
