#include "util/files/cleanup_directory.h"

#include <gtest/gtest.h>

#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/files/xr_directory.h"

using util_test::ImportPatch;
using util_test::ScratchDirectory;

namespace {

size_t entries(const std::string& path) {
    return XrDirectory(path).getDirectoryList(true, false)->size();
}

TEST(CleanupDirectoryTest, DeletesFilesAndCountsSubdirectories) {
    ScratchDirectory scratch;
    const std::string directory = scratch.directory("d");
    const std::string sub = scratch.directory("d\\.sub");
    scratch.directory("d\\sub2");
    scratch.file("d\\.sub\\inner", "");
    scratch.file("d\\gr\xC3\xBC\xE6\x96\x87" + std::string(200, 'l'), "x");
    SetFileAttributesA(scratch.file("d\\read-only", "").c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(UTIL_cleanupDir(directory.c_str(), 1), 2);
    EXPECT_EQ(entries(directory), 3u) << "two subdirectories and the read-only file";
    EXPECT_EQ(entries(sub), 1u) << "not entered";
    EXPECT_EQ(UTIL_cleanupDir(sub.c_str(), 0), 0);
    EXPECT_EQ(entries(sub), 0u);
    EXPECT_EQ(UTIL_cleanupDir((sub + "\\").c_str(), -1), 0);
    EXPECT_FALSE(XrDirectory::IsDirectory(sub)) << "any flag but 0 removes";
}

int searches;
HANDLE WINAPI failing_search(LPCWSTR, WIN32_FIND_DATAW*) {
    ++searches;
    return INVALID_HANDLE_VALUE;
}

TEST(CleanupDirectoryTest, RemovesWhatItCannotListButNeverTheDriveOfAnEmptyPath) {
    ScratchDirectory scratch;
    const std::string directory = scratch.directory("d");
    EXPECT_EQ(UTIL_cleanupDir((scratch / "missing").c_str(), 1), 0);
    const ImportPatch patch("FindFirstFileW", failing_search);
    EXPECT_EQ(UTIL_cleanupDir("", 1), 0);
    EXPECT_EQ(UTIL_cleanupDir(nullptr, 1), 0);
    EXPECT_EQ(searches, 0);
    EXPECT_EQ(UTIL_cleanupDir(directory.c_str(), 1), 0);
    EXPECT_EQ(searches, 1);
    EXPECT_FALSE(XrDirectory::IsDirectory(directory));
}

}  // namespace
