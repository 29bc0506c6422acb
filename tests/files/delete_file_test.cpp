#include "util/files/delete_file.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "support/scratch_directory.h"

TEST(DeleteFileTest, ReadOnlyFilesNeedTheSecondForm) {
    util_test::ScratchDirectory scratch;
    const std::string plain = scratch.file("gr\xC3\xBC\xE6\x96\x87", "");
    const std::string guarded = scratch.file("guarded", "");
    SetFileAttributesA(guarded.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(UTIL_delete(plain.c_str()), 0);
    EXPECT_EQ(UTIL_delete(guarded.c_str()), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(UTIL_delete_readonly(guarded.c_str()), 0);
    for (auto* remove : {UTIL_delete, UTIL_delete_readonly}) {
        errno = 0;
        EXPECT_EQ(remove(guarded.c_str()), -1) << "it is gone";
        EXPECT_EQ(errno, ENOENT);
        EXPECT_EQ(remove(nullptr), -1);
    }
    EXPECT_EQ(UTIL_delete_readonly(scratch.directory("directory").c_str()), -1);
}
