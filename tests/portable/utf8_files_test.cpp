#include "util/portable/utf8_files.h"

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/test.h"

using util_test::handle_count;
using util_test::ImportPatch;
using util_test::ScratchDirectory;

TEST(Utf8FindTest, NameThatCannotBeConvertedLeavesNoNewSearchOpen) {
    const ScratchDirectory scratch;
    const std::string stem = "\xE8\xA4\x87", pattern = scratch / stem + "*";
    for (const char number : {'1', '2', '3', '4'})
        scratch.file(stem + number);
    WIN32_FIND_DATAW data;
    char name[778];
    void* search = UTF8_FindFirstFile(pattern.c_str(), &data, name);
    const long before = handle_count();
    {
        ImportPatch patch("WideCharToMultiByte", util_test::fails<0>);
        EXPECT_EQ(UTF8_FindFirstFile(pattern.c_str(), &data, name), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_NAME));
        SetLastError(77);
        EXPECT_EQ(UTF8_FindNextFile(search, &data, name), 0);
        EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_NAME));
        EXPECT_EQ(UTF8_FindNextFile(search, &data, nullptr), 1) << "the name is not wanted";
    }
    EXPECT_EQ(handle_count(), before) << "the running search stays, a new one does not";
    EXPECT_EQ(UTF8_FindNextFile(search, nullptr, name), 0);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_NAME));
    EXPECT_EQ(UTF8_FindNextFile(search, &data, name), 1);
    EXPECT_TRUE(FindClose(search));
    SetLastError(77);
    EXPECT_EQ(UTF8_FindFirstFile("C:\\*", nullptr, name), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_NAME)) << "no record to fill";
}
