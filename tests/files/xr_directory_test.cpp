#include "util/files/xr_directory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>

#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/portable/utf8_files.h"

using namespace util_test;

namespace {

using Names = std::vector<std::string>;

Names names(XrDirectory& directory, bool include_hidden = false, bool refresh = false) {
    Names result;
    for (const XrDirectoryEntry* entry : *directory.getDirectoryList(include_hidden, refresh))
        result.push_back(entry->str());
    return result;
}

TEST(ExtPtrSortedVectorTest, KeepsOrderAndArrival) {
    extstl::ExtPtrSortedVector<XrDirectoryEntry, XrDirectoryEntry> list;
    int mode = 0;
    for (const char* name : {"b", "a", "b", "\xE9", "B", "ab"})
        EXPECT_TRUE(list.insert(new XrDirectoryEntry(name, ++mode, 0)));
    EXPECT_FALSE(list.insert(nullptr));
    std::vector<std::unique_ptr<XrDirectoryEntry>> more(2);
    more[0] = std::make_unique<XrDirectoryEntry>("b", 7, 0);
    more[1] = std::make_unique<XrDirectoryEntry>("a", 8, 0);
    list.insert(std::move(more));
    std::vector<int> order;
    for (const auto* entry : list)
        order.push_back(entry->getMode());
    EXPECT_EQ(order, (std::vector<int>{5, 2, 8, 6, 1, 3, 7, 4}));
}

struct XrDirectoryTest : testing::Test {
    ScratchDirectory m_scratch;
};

TEST_F(XrDirectoryTest, ListsSortedByNameAndHidesDotNames) {
    const char* const word = "gr\xC3\xBC\xC3\x9F\xE6\x96\x87\xF0\x9F\x98\x80";
    for (const char* name : {"b", ".hidden", "..two", "A", word})
        m_scratch.file(name);
    m_scratch.directory("sub");
    for (const char* ending : {"", "\\", "/"}) {
        XrDirectory directory(m_scratch.path() + ending);
        EXPECT_EQ(names(directory), (Names{"A", "b", word, "sub"})) << ending;
        directory.destroy();
        EXPECT_EQ(names(directory, true), (Names{"..two", ".hidden", "A", "b", word, "sub"}))
            << ending;
    }
}

TEST_F(XrDirectoryTest, ListsTheCurrentDirectoryAndOneAtAnyDepth) {
    m_scratch.file("a", "12345");
    SetCurrentDirectoryA(m_scratch.path().c_str());
    XrDirectory current(".");
    EXPECT_EQ((*current.getDirectoryList(false, false))[0]->getSize(), 5);
    const std::string deep = std::string(200, 'd') + "\\" + std::string(200, 'd');
    m_scratch.directory(deep);
    m_scratch.file(deep + "\\a");
    for (const char* ending : {"", "\\"}) {
        XrDirectory directory((m_scratch / deep) + ending);
        EXPECT_EQ(names(directory), Names{"a"}) << ending;
    }
}

TEST_F(XrDirectoryTest, ListingIsKeptAndRefreshAddsToIt) {
    m_scratch.file("a", "");
    m_scratch.file("b", "");
    XrDirectory directory(m_scratch.path());
    auto* list = directory.getDirectoryList(false, false);
    m_scratch.file("c", "");
    EXPECT_EQ(names(directory), (Names{"a", "b"})) << "the disk is not looked at again";
    EXPECT_EQ(names(directory, false, true), (Names{"a", "a", "b", "b", "c"}));
    EXPECT_EQ(directory.getDirectoryList(false, false), list) << "the same list, grown";
    directory.destroy();
    EXPECT_EQ(names(directory), (Names{"a", "b", "c"}));

    XrDirectory copy(directory);
    EXPECT_EQ(copy.getDirectoryList(false, false), directory.getDirectoryList(false, false));
    const std::unique_ptr<XrDirectory::List> dropped(copy.getDirectoryList(false, false));
    copy.init("");
    directory.init(m_scratch / "a");
    EXPECT_FALSE(directory.isValid()) << "a file";
    EXPECT_EQ(dropped->size(), 3u) << "init drops the listing without freeing it";
}

// What the search brings must be what the status call says.
TEST_F(XrDirectoryTest, EntriesCarryTheStatusOfEachFile) {
    for (const char* name : {"plain", "TOOL.ExE", "a.bat", "b.cmd", ".exe", "x.exe.txt", "x.y.com"})
        m_scratch.file(name, std::string(name) + "!");
    SetFileAttributesA(m_scratch.file("read-only", "x").c_str(), FILE_ATTRIBUTE_READONLY);
    SetFileAttributesA(m_scratch.directory("read-only directory").c_str(), FILE_ATTRIBUTE_READONLY);
    for (const std::uint64_t size : {3ull << 30, (5ull << 30) + 7})
        std::filesystem::resize_file(m_scratch.file("size " + std::to_string(size)), size);
    // Listed, but their paths lead elsewhere.
    const Names astray = {"aux", "nul.txt", "LPT1 .log", "dot.", "sp "};
    for (const std::string& name : astray)
        m_scratch.file(name, "x");
    XrDirectory directory(m_scratch.path());
    for (const XrDirectoryEntry* entry : *directory.getDirectoryList(true, false)) {
        struct _stat64i32 record = {};
        const bool known = UTF8_stat((m_scratch / entry->str()).c_str(), &record) == 0;
        const bool strays = std::count(astray.begin(), astray.end(), entry->str()) != 0;
        ASSERT_TRUE(known || strays) << *entry;
        EXPECT_FALSE(known && strays && record.st_size == 1) << *entry;
        EXPECT_EQ(entry->getMode(), record.st_mode) << *entry;
        EXPECT_EQ(entry->getSize(), record.st_size) << *entry;
        EXPECT_EQ(entry->isDirectory(), (record.st_mode & _S_IFDIR) != 0) << *entry;
    }
    EXPECT_EQ(directory.getDirectoryList(true, false)->size(), 11u + astray.size());
}

// Describes the one file in another way than it is.
std::wstring found_name;
DWORD found_attributes;
BOOL WINAPI found_otherwise(HANDLE search, WIN32_FIND_DATAW* data) {
    const BOOL found = FindNextFileW(search, data);
    if (data->cFileName[0] == L'.') return found;
    data->cFileName[found_name.copy(data->cFileName, MAX_PATH)] = L'\0';
    data->dwFileAttributes |= found_attributes;
    data->nFileSizeLow = 999;
    return found;
}

TEST_F(XrDirectoryTest, NamesThatNoPathReachesHaveTheirStatusFromThePathToo) {
    m_scratch.file("a", "12345");
    m_scratch.directory("d");
    XrDirectory directory(m_scratch.path());
    const ImportPatch patch("FindNextFileW", found_otherwise);
    const auto size_of = [&](const std::wstring& name, DWORD attributes) {
        found_name = name;
        found_attributes = attributes;
        directory.destroy();
        const XrDirectoryEntry* const entry = (*directory.getDirectoryList(false, false))[0];
        EXPECT_EQ(entry->getMode() == 0, entry->getSize() == 0) << *entry;
        return entry->getSize();
    };
    EXPECT_EQ(size_of(L"other", 0), 999) << "from the search, as most";
    EXPECT_EQ(size_of(L"a", FILE_ATTRIBUTE_REPARSE_POINT), 5) << "what the link leads to";
    EXPECT_EQ(size_of(L"d\\..\\a", 0), 5);
    for (const wchar_t c : std::wstring(L"\"*/:<>?\\|\x01\x1F\xD800\xDFFF\xFFFD"))
        EXPECT_EQ(size_of(std::wstring(L"n") + c, 0), 0) << int(c);
}

// A call per entry would show in the time of every listing.
TEST_F(XrDirectoryTest, OnlyPathsThatMayBeTooLongNeedTheStatusCall) {
    m_scratch.file("name");
    SetCurrentDirectoryA(m_scratch.path().c_str());
    const std::string long_name(200, 'd');
    m_scratch.directory(long_name);
    m_scratch.file(long_name + "\\" + std::string(200, 'f'));
    const std::string path = m_scratch.path();
    const std::pair<std::string, bool> cases[] = {{path, false},
                                                  {path.substr(0, 2) + "/" + path.substr(3), false},
                                                  {"\\\\?\\" + path, true},
                                                  {".", true},
                                                  {m_scratch / long_name, true}};
    const ImportPatch no_status("_wstat64", fails<-1>);
    for (const auto& [listed, called] : cases) {
        XrDirectory directory(listed);
        EXPECT_EQ((*directory.getDirectoryList(false, false))[0]->getMode() == 0, called) << listed;
    }
}

TEST_F(XrDirectoryTest, ASearchThatBreaksOffGivesWhatWasFound) {
    m_scratch.file("a");
    // The code is also that of a name that cannot be converted.
    const ImportPatch patch("FindNextFileW", fails<FALSE, ERROR_INVALID_NAME>);
    XrDirectory directory(m_scratch.path());
    EXPECT_EQ(names(directory, true).size(), 0u) << "only \".\" was found";
}

DWORD drive_text_length;
DWORD WINAPI drive_text(DWORD size, char* buffer) {
    static const char text[] = "C:\\ \0 \t\0\r\nD:\\\0";
    if (size >= sizeof text) std::memcpy(buffer, text, sizeof text);
    return drive_text_length ? drive_text_length : sizeof text - 1;
}

TEST(XrDirectoryRootsTest, EmptyPathListsTheDrivesTrimmedAndNeverPastTheBuffer) {
    const ImportPatch patch("GetLogicalDriveStringsA", drive_text);
    XrDirectory drives("");
    drive_text_length = 0;
    EXPECT_TRUE(drives.isValid());
    EXPECT_EQ(names(drives), (Names{"C:\\", "D:\\"}));
    EXPECT_EQ((*drives.getDirectoryList(false, false))[1]->getMode(), 0x4000);
    for (const DWORD length : {1024, 1025, 4096, 5000}) {
        drives.destroy();
        drive_text_length = length;
        EXPECT_EQ(names(drives), Names()) << length;
    }
}

TEST_F(XrDirectoryTest, UnreadableDirectoriesSaySoOnStandardOutput) {
    XrDirectory missing(m_scratch / "missing");
    EXPECT_FALSE(missing.isValid());
    const ImportPatch no_single_bytes("fputc", fails<0>);  // each would be a write on a console
    testing::internal::CaptureStdout();
    EXPECT_EQ(missing.getDirectoryList(false, false)->size(), 0u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Failed to open directory: " + m_scratch / "missing" + "\n");
}

BOOL WINAPI free_space(const wchar_t*, ULARGE_INTEGER* available, ULARGE_INTEGER* total,
                       ULARGE_INTEGER* free) {
    available->QuadPart = 5000;
    total->QuadPart = 9000;
    free->QuadPart = 7000;
    return TRUE;
}

TEST_F(XrDirectoryTest, FreeSpaceIsTheCallersInKilobytes) {
    double kilobytes = -1;
    EXPECT_EQ(XrDirectory(m_scratch / "missing").getFreeSpace(&kilobytes), -1);
    EXPECT_EQ(kilobytes, 0);
    EXPECT_EQ(XrDirectory(m_scratch.path()).getFreeSpace(&kilobytes), 0);
    EXPECT_GT(kilobytes, 0);
    const ImportPatch patch("GetDiskFreeSpaceExW", free_space);
    EXPECT_EQ(XrDirectory(m_scratch.path()).getFreeSpace(&kilobytes), 0);
    EXPECT_EQ(kilobytes, 5000 / 1024.0) << "the caller's share";
    EXPECT_EQ(XrDirectory(m_scratch.path()).getFreeSpace(nullptr), -1);
}

Names removals;
BOOL WINAPI recording_remove(const char* path) {
    removals.push_back(path);
    return path[0] != 'C' || path[3] != '\0';
}

TEST_F(XrDirectoryTest, DeletesATreeUpwardCuttingAtTheFirstOccurrence) {
    const struct {
        const char* path;
        int result;
        Names removals;
    } cases[] = {
        {"C:\\t1\\t2", 1, {"C:\\t1\\t2", "C:\\t1\\", "C:\\"}},
        {"C:\\ab\\x\\a", 1, {"C:\\ab\\x\\a", "C:\\", "C:\\", "C:\\"}},
        {"a\\b\\a", 0, {"a\\b\\a", "", ""}},
        {"gr\xC3\xBC\\x", 0, {"gr\xFC\\x", "gr\xFC\\"}},
        {"x\\\xE6\x96\x87", 1, {"x\\"}},  // the page lacks it, so no other is tried in its place
    };
    const ImportPatch patch("RemoveDirectoryA", recording_remove);
    for (const auto& c : cases) {
        removals.clear();
        EXPECT_EQ(XrDirectory::DeleteDirectoryTree(c.path), c.result) << c.path;
        EXPECT_EQ(removals, c.removals) << c.path;
    }
}

TEST_F(XrDirectoryTest, DeletesOnlyEmptyDirectories) {
    EXPECT_EQ(XrDirectory::DeleteDirectoryTree(nullptr), 22);
    EXPECT_EQ(XrDirectory::DeleteDirectory(nullptr), 22);
    EXPECT_EQ(errno, 22);
    const std::string inner = m_scratch.directory("top\\t\xC3\xBC");
    m_scratch.file("top\\file");
    m_scratch.directory("top\\t\xC3\xBC\\x");
    EXPECT_EQ(XrDirectory::DeleteDirectory(inner.c_str()), 22) << "not empty";
    EXPECT_EQ(XrDirectory::DeleteDirectory(String(inner + "\\x")), 0);
    SetFileApisToOEM();
    EXPECT_EQ(XrDirectory::DeleteDirectoryTree(String(inner)), 1) << "the drive's root stays";
    SetFileApisToANSI();
    EXPECT_FALSE(XrDirectory::IsDirectory(inner));
}

}  // namespace
