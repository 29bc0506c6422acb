#include "util/portable/utf8_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
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

int WINAPI unconvertible(UINT, DWORD, LPCCH, int, LPWSTR, int) {
    return 0;
}
int WINAPI unconvertible_name(UINT, DWORD, LPCWCH, int, LPSTR, int, LPCCH, LPBOOL) {
    return 0;
}
void* no_block(size_t, size_t) {
    errno = ENOMEM;
    return nullptr;
}
void WINAPI disturbing_free(BSTR text) {
    SysFreeString(text);
    errno = 88;
    SetLastError(88);
}

struct Row {
    const char* name;
    std::function<std::intptr_t(const char*)> call;
    std::string path;  // one that makes the call fail
    std::intptr_t result;
    int unconverted;  // the code when the path cannot be converted, 77 for one left alone
    int failed;       // the code when the platform's call fails
};

TEST(Utf8FilesTest, EachCallReportsEachFailureInItsOwnWay) {
    const ScratchDirectory scratch;
    const std::string& full = scratch.path();
    const std::string file = scratch.file("file");
    const std::string none = scratch / "none";
    const std::string orphan = scratch / "none\\none";
    struct _stat64i32 record;
    const auto open = [](auto path) { return UTF8_open(path, O_RDONLY, 0); };
    const auto disk = [](auto path) { return UTF8_GetDiskFreeSpaceEx(path, {}, {}, {}); };
    const auto copy_over = [&](auto path) { return UTF8_CopyFile(path, file.c_str(), 0); };
    const auto copy_to = [&](auto path) { return UTF8_CopyFile(file.c_str(), path, 1); };
    const Row by_errno[] = {
        {"open", open, none, -1, EINVAL, ENOENT},
        {"open nothing", open, "", -1, EINVAL, ENOENT},
        {"access", [](auto path) { return UTF8_access(path, 0); }, none, -1, EINVAL, ENOENT},
        {"unlink", UTF8_unlink, none, -1, 77, ENOENT},
        {"chdir", UTF8_chdir, none, -1, 77, ENOENT},
        {"chmod", [](auto path) { return UTF8_chmod(path, 0600); }, none, -1, 77, ENOENT},
        {"mkdir, exists", UTF8_mkdir, full, -1, EINVAL, EINVAL},
        {"mkdir, no parent", UTF8_mkdir, orphan, -1, EINVAL, EINVAL},
        {"rmdir, missing", UTF8_rmdir, none, -1, EINVAL, EINVAL},
        {"rmdir, not empty", UTF8_rmdir, full, -1, EINVAL, EINVAL},
        {"rmdir, a file", UTF8_rmdir, file, -1, EINVAL, EINVAL},
        {"stat", [&](auto path) { return UTF8_stat(path, &record); }, none, -1, any, ENOENT},
    };
    const Row by_last_error[] = {
        {"find", find_first, none, -1, ERROR_INVALID_NAME, ERROR_FILE_NOT_FOUND},
        {"find, no parent", find_first, orphan, -1, ERROR_INVALID_NAME, ERROR_PATH_NOT_FOUND},
        {"disk", disk, "Q:\\", 0, any, ERROR_PATH_NOT_FOUND},
        {"copy over", copy_over, none, 0, any, ERROR_FILE_NOT_FOUND},
        {"copy onto", copy_to, file, 0, any, ERROR_FILE_EXISTS},
    };
    const auto check_all = [&](const char* why, bool converted, bool null) {
        const auto check = [&](const Row& row, bool is_errno) {
            errno = 77;
            SetLastError(77);
            const auto result = row.call(null ? nullptr : row.path.c_str());
            const int code = is_errno ? errno : static_cast<int>(GetLastError());
            const int expected = converted ? row.failed : row.unconverted;
            EXPECT_EQ(result, row.result) << row.name << ", " << why;
            EXPECT_TRUE(expected == any || code == expected)
                << row.name << ", " << why << ": " << code;
        };
        for (const Row& row : by_errno)
            check(row, true);
        for (const Row& row : by_last_error)
            check(row, false);
    };
    check_all("null", false, true);
    {
        ImportPatch patch("MultiByteToWideChar", unconvertible);
        check_all("refused by the platform", false, false);
    }
    {
        ImportPatch patch("calloc", no_block);
        check_all("no memory", false, false);
    }
    ImportPatch patch("SysFreeString", disturbing_free);
    check_all("by the call, whatever giving the path back leaves behind", true, false);
}

const std::string names[] = {
    "plain",
    "r\xC3\xA9plica",
    "\xE8\xA4\x87\xE8\xA3\xBD",
    "d\xF0\x9F\x98\x80k",
};

TEST(Utf8FilesTest, WorksOnAnyNameAtAnyDepth) {
    const ScratchDirectory scratch;
    std::string deep = scratch.path();
    while (deep.size() < 400)
        ASSERT_EQ(UTF8_mkdir((deep += "\\" + std::string(60, 'd')).c_str()), 0);
    for (const std::string& parent : {scratch.path(), deep}) {
        for (const std::string& name : names) {
            const std::string directory = parent + "\\" + name;
            const std::string file = directory + "\\" + name + ".dat";
            const std::string copy = directory + "\\copy of " + name;
            struct _stat64i32 record;
            ASSERT_EQ(UTF8_mkdir(directory.c_str()), 0) << directory;
            ASSERT_EQ(UTF8_lstat(directory.c_str(), &record), 0);
            EXPECT_TRUE(record.st_mode & S_IFDIR);
            const int fd = UTF8_open(file.c_str(), O_CREAT | O_EXCL | O_RDWR, S_IWRITE);
            ASSERT_NE(fd, -1);
            EXPECT_EQ(_close(fd), 0);
            EXPECT_EQ(UTF8_access(file.c_str(), 6), 0);
            EXPECT_EQ(UTF8_chmod(file.c_str(), S_IREAD), 0);
            EXPECT_EQ(UTF8_access(file.c_str(), 2), -1);
            EXPECT_EQ(UTF8_chmod(file.c_str(), S_IREAD | S_IWRITE), 0);
            EXPECT_NE(UTF8_CopyFile(file.c_str(), copy.c_str(), 1), 0);
            EXPECT_NE(UTF8_CopyFile(file.c_str(), copy.c_str(), 0), 0) << "replaces";
            EXPECT_EQ(UTF8_chdir(directory.c_str()), 0);
            EXPECT_EQ(UTF8_access((name + ".dat").c_str(), 0), 0);
            EXPECT_EQ(UTF8_chdir("C:\\"), 0);
            EXPECT_EQ(UTF8_unlink(file.c_str()), 0);
            EXPECT_EQ(UTF8_unlink(copy.c_str()), 0);
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

TEST(Utf8FindTest, ListsNamesInUtf8) {
    const ScratchDirectory scratch;
    for (const std::string& name : names)
        scratch.file(name);
    WIN32_FIND_DATAW data;
    char name[778];
    std::multiset<std::string> found;
    void* search = UTF8_FindFirstFile((scratch / "*").c_str(), &data, name);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    do {
        found.insert(name);
        EXPECT_EQ(util_test::to_wide(name), data.cFileName);
        std::memset(name, '#', sizeof name);
    } while (UTF8_FindNextFile(search, &data, name));
    EXPECT_EQ(GetLastError(), DWORD(ERROR_NO_MORE_FILES));
    EXPECT_EQ(name[0], '#') << "nothing is written at the end";
    EXPECT_TRUE(FindClose(search));
    std::multiset<std::string> expected(std::begin(names), std::end(names));
    expected.insert({".", ".."});
    EXPECT_EQ(found, expected);
}

HANDLE WINAPI find_longest(LPCWSTR, WIN32_FIND_DATAW* data) {
    std::fill_n(data->cFileName, 259, L'\x8907');
    data->cFileName[259] = L'\0';
    return reinterpret_cast<HANDLE>(1234);
}

TEST(Utf8FindTest, LongestNameTakesTheRoomThatIsPromised) {
    ImportPatch patch("FindFirstFileW", find_longest);
    WIN32_FIND_DATAW data;
    std::string name(779, '#');
    EXPECT_NE(UTF8_FindFirstFile("C:\\*", &data, name.data()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(name.find('\0'), 777u);
    EXPECT_EQ(name[778], '#');
}

TEST(Utf8FindTest, NameThatCannotBeConvertedLeavesNoNewSearchOpen) {
    WIN32_FIND_DATAW data;
    char name[778];
    void* search = UTF8_FindFirstFile("C:\\*", &data, name);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    const long before = handle_count();
    {
        ImportPatch patch("WideCharToMultiByte", unconvertible_name);
        SetLastError(77);
        EXPECT_EQ(find_first("C:\\*"), -1);
        EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_NAME));
        SetLastError(77);
        EXPECT_EQ(UTF8_FindNextFile(search, &data, name), 0);
        EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_NAME));
        EXPECT_EQ(UTF8_FindNextFile(search, &data, nullptr), 1) << "the name is not wanted";
    }
    EXPECT_EQ(handle_count(), before) << "the running search stays, a new one does not";
    EXPECT_EQ(UTF8_FindNextFile(search, &data, name), 1);
    EXPECT_TRUE(FindClose(search));
    SetLastError(77);
    EXPECT_EQ(UTF8_FindFirstFile("C:\\*", nullptr, name), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_NAME)) << "no record to fill";
}

}  // namespace
