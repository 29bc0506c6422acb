#include "util/files/xr_directory.h"

#include <sys/stat.h>

#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/test.h"
#include "util/portable/utf8_files.h"

using namespace util_test;

namespace {

using Names = std::vector<std::string>;

Names names(XrDirectory& directory, bool include_hidden = false) {
    Names result;
    for (const XrDirectoryEntry* entry : *directory.getDirectoryList(include_hidden, false))
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

TEST_F(XrDirectoryTest, Copy_SharesTheListing) {
    m_scratch.file("a");
    XrDirectory directory(m_scratch.path());
    auto* const list = directory.getDirectoryList(false, false);
    EXPECT_EQ(directory.getDirectoryList(false, true), list) << "the same list, grown";
    XrDirectory copy(directory);
    const std::unique_ptr<XrDirectory::List> dropped(copy.getDirectoryList(false, false));
    EXPECT_EQ(dropped.get(), list);
    copy.init("");
    directory.init("");
    EXPECT_EQ(dropped->size(), 2u) << "init drops the listing without freeing it";
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

TEST_F(XrDirectoryTest, NameThatNoPathReaches_HasTheStatusOfThePath) {
    m_scratch.file("a", "12345");
    m_scratch.directory("d");
    XrDirectory directory(m_scratch.path());
    // The size of the one file, which the search describes in another way than it is.
    const auto size_of = [&](const std::wstring& name, DWORD attributes) {
        const ImportPatch patch("FindNextFileW", [&](HANDLE search, WIN32_FIND_DATAW* data) {
            const BOOL found = FindNextFileW(search, data);
            if (data->cFileName[0] == L'.') return found;
            data->cFileName[name.copy(data->cFileName, MAX_PATH)] = L'\0';
            data->dwFileAttributes |= attributes;
            data->nFileSizeLow = 999;
            return found;
        });
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

TEST(XrDirectoryRootsTest, EmptyPath_ListsTheTrimmedDrivesWithinTheBuffer) {
    const std::string text("C:\\ \0 \t\0\r\nD:\\\0", 14);
    DWORD length = DWORD(text.size());
    const ImportPatch patch("GetLogicalDriveStringsA", [&](DWORD size, char* buffer) {
        text.copy(buffer, size);
        return length;
    });
    XrDirectory drives("");
    EXPECT_EQ(names(drives), (Names{"C:\\", "D:\\"}));
    EXPECT_EQ((*drives.getDirectoryList(false, false))[1]->getMode(), 0x4000);
    for (const DWORD too_long : {1024, 1025, 4096, 5000}) {
        drives.destroy();
        length = too_long;
        EXPECT_EQ(names(drives), Names()) << too_long;
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

TEST_F(XrDirectoryTest, FreeSpace_IsTheCallersInKilobytes) {
    double kilobytes = -1;
    EXPECT_EQ(XrDirectory(m_scratch / "missing").getFreeSpace(&kilobytes), -1);
    EXPECT_EQ(kilobytes, 0);
    EXPECT_EQ(XrDirectory(m_scratch.path()).getFreeSpace(&kilobytes), 0);
    EXPECT_GT(kilobytes, 0);
    const ImportPatch patch("GetDiskFreeSpaceExW", [](const wchar_t*, ULARGE_INTEGER* available,
                                                      ULARGE_INTEGER* total, ULARGE_INTEGER* free) {
        available->QuadPart = 5000;
        total->QuadPart = 9000;
        free->QuadPart = 7000;
        return TRUE;
    });
    EXPECT_EQ(XrDirectory(m_scratch.path()).getFreeSpace(&kilobytes), 0);
    EXPECT_EQ(kilobytes, 5000 / 1024.0) << "the caller's share";
    EXPECT_EQ(XrDirectory(m_scratch.path()).getFreeSpace(nullptr), -1);
}

TEST_F(XrDirectoryTest, DeleteDirectoryTree_NeverUsesTheOemCodePage) {
    const std::string path = m_scratch.directory("t\xC3\xBC");
    SetFileApisToOEM();
    EXPECT_EQ(XrDirectory::DeleteDirectoryTree(String(path)), 1) << "the drive's root stays";
    SetFileApisToANSI();
    EXPECT_FALSE(XrDirectory::IsDirectory(path));
}

}  // namespace
