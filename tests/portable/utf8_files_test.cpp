#include "util/portable/utf8_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <functional>
#include <set>
#include <string>

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
// after the platform's header
#include <oleauto.h>

using util_test::handle_count;
using util_test::ImportPatch;
using util_test::ScratchDirectory;

namespace {

constexpr int any = -2;

std::intptr_t find_first(const char* path) {
    WIN32_FIND_DATAW data;
    char name[778];
    return reinterpret_cast<std::intptr_t>(UTF8_FindFirstFile(path, &data, name));
}

void WINAPI disturbing_free(BSTR text) {
    SysFreeString(text);
    errno = 88;
    SetLastError(88);
}

TEST(Utf8FilesTest, EachCallReportsEachFailureInItsOwnWay) {
    const ScratchDirectory scratch;
    const std::string& full = scratch.path();
    std::string none = scratch.path();  // so long that its conversion needs memory
    while (none.size() < 300)
        none += "\\.";
    none += "\\none";
    const std::string file = scratch.file("file");
    struct _stat64i32 record;
    const auto open = [](auto path) { return UTF8_open(path, O_RDONLY, 0); };
    const auto access = [](auto path) { return UTF8_access(path, 0); };
    const auto chmod = [](auto path) { return UTF8_chmod(path, 0600); };
    const auto stat = [&](auto path) { return UTF8_stat(path, &record); };
    const auto disk = [](auto path) { return UTF8_GetDiskFreeSpaceEx(path, {}, {}, {}); };
    const auto copy_over = [&](auto path) { return UTF8_CopyFile(path, file.c_str(), 0); };
    const auto copy_to = [&](auto path) { return UTF8_CopyFile(file.c_str(), path, 1); };
    enum Report { by_errno, by_last_error };
    const struct {
        std::function<std::intptr_t(const char*)> call;
        std::string path;  // one that makes the call fail
        std::intptr_t result;
        Report report;
        int unconverted;  // the code when the path cannot be converted, 77 for one left alone
        int failed;       // the code when the platform's call fails
    } rows[] = {
        {open, none, -1, by_errno, EINVAL, ENOENT},
        {access, none, -1, by_errno, EINVAL, ENOENT},
        {UTF8_unlink, none, -1, by_errno, 77, ENOENT},
        {UTF8_chdir, none, -1, by_errno, 77, ENOENT},
        {chmod, none, -1, by_errno, 77, ENOENT},
        {UTF8_mkdir, full, -1, by_errno, EINVAL, EINVAL},
        {UTF8_mkdir, none + "\\none", -1, by_errno, EINVAL, EINVAL},
        {UTF8_rmdir, full, -1, by_errno, EINVAL, EINVAL},
        {stat, none, -1, by_errno, any, ENOENT},
        {find_first, none, -1, by_last_error, ERROR_INVALID_NAME, ERROR_FILE_NOT_FOUND},
        {disk, "Q:\\", 0, by_last_error, any, ERROR_PATH_NOT_FOUND},
        {copy_over, none, 0, by_last_error, any, ERROR_FILE_NOT_FOUND},
        {copy_to, file, 0, by_last_error, any, ERROR_FILE_EXISTS},
    };
    const auto check_all = [&](const char* why, bool converted, bool null = false) {
        for (const auto& row : rows) {
            errno = 77;
            SetLastError(77);
            EXPECT_EQ(row.call(null ? nullptr : row.path.c_str()), row.result) << why;
            const int code = row.report == by_errno ? errno : static_cast<int>(GetLastError());
            const int expected = converted ? row.failed : row.unconverted;
            EXPECT_TRUE(expected == any || code == expected)
                << why << ": " << code << " in row " << &row - rows;
        }
    };
    check_all("null", false, true);
    for (const char* refused : {"MultiByteToWideChar", "_ZnayRKSt9nothrow_t"}) {
        ImportPatch patch(refused, util_test::fails<0, 0, ENOMEM>);
        check_all(refused, false);
    }
    ImportPatch patch("SysFreeString", disturbing_free);
    check_all("by the call, whatever giving the path back leaves behind", true);
}

const std::string names[] = {"plain", "r\xC3\xA9plica", "\xE8\xA4\x87", "d\xF0\x9F\x98\x80k"};

// The names in a directory, which the search gives in both forms.
std::set<std::string> listed(const std::string& directory) {
    std::set<std::string> found;
    WIN32_FIND_DATAW data;
    char name[778];
    void* const search = UTF8_FindFirstFile((directory + "\\*").c_str(), &data, name);
    do {
        EXPECT_TRUE(found.insert(name).second);
        EXPECT_EQ(util_test::to_wide(name), data.cFileName);
    } while (UTF8_FindNextFile(search, &data, name));
    EXPECT_EQ(GetLastError(), DWORD(ERROR_NO_MORE_FILES));
    EXPECT_TRUE(FindClose(search));
    return found;
}

TEST(Utf8FilesTest, WorksOnAnyNameAtAnyDepth) {
    const ScratchDirectory scratch;
    const std::string deep =
        scratch.directory(std::string(200, 'd') + "\\" + std::string(200, 'd'));
    for (const std::string& parent : {scratch.path(), deep}) {
        for (const std::string& name : names) {
            const std::string directory = parent + "\\" + name;
            const std::string file = directory + "\\" + name, copy = file + ".copy";
            ASSERT_EQ(UTF8_mkdir(directory.c_str()), 0) << directory;
            const int fd = UTF8_open(file.c_str(), O_CREAT | O_EXCL | O_RDWR, S_IWRITE);
            ASSERT_NE(fd, -1);
            EXPECT_EQ(_close(fd), 0);
            EXPECT_EQ(UTF8_chmod(file.c_str(), S_IREAD), 0);
            EXPECT_EQ(UTF8_access(file.c_str(), 2), -1);
            EXPECT_EQ(UTF8_chmod(file.c_str(), S_IREAD | S_IWRITE), 0);
            EXPECT_EQ(UTF8_access(file.c_str(), 6), 0);
            EXPECT_NE(UTF8_CopyFile(file.c_str(), copy.c_str(), 1), 0);
            EXPECT_NE(UTF8_CopyFile(file.c_str(), copy.c_str(), 0), 0) << "replaces";
            EXPECT_EQ(listed(directory), (std::set<std::string>{".", "..", name, name + ".copy"}));
            EXPECT_EQ(UTF8_chdir(directory.c_str()), 0);
            EXPECT_EQ(UTF8_unlink(name.c_str()), 0);
            EXPECT_EQ(UTF8_unlink(copy.c_str()), 0);
            EXPECT_EQ(UTF8_chdir("C:\\"), 0);
            EXPECT_EQ(UTF8_rmdir(directory.c_str()), 0);
            EXPECT_EQ(UTF8_access(directory.c_str(), 0), -1);
        }
    }
}

TEST(Utf8FilesTest, DiskSpaceIsThePlatforms) {
    std::uint64_t available = 0, total = 0, free = 0;
    ULARGE_INTEGER expected;
    ASSERT_TRUE(GetDiskFreeSpaceExW(L"C:\\", nullptr, &expected, nullptr));
    EXPECT_NE(UTF8_GetDiskFreeSpaceEx("C:\\", &available, &total, &free), 0);
    EXPECT_EQ(total, expected.QuadPart);
    EXPECT_LE(available, free);
    EXPECT_LT(free, total);
}

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
        EXPECT_EQ(find_first(pattern.c_str()), -1);
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

}  // namespace
