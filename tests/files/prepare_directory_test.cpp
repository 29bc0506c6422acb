#include "util/files/prepare_directory.h"

#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/second_process.h"
#include "support/test.h"
#include "util/files/xr_directory.h"
#include "util/files/xr_file.h"

using namespace std::string_literals;
using util_test::ImportPatch;
using util_test::SecondProcess;
using util_test::Signal;

namespace {

using Names = std::vector<std::string>;

Names records(const std::string& tracking_file) {
    XrFile file(tracking_file.c_str(), "r");
    Names result;
    while (file.isValid() && !file.Eof()) {
        result.push_back("unreadable");
        file >> result.back();
    }
    return result;
}

String text_of(int code) {
    return String("\xE6\x96\x87") + String(code) + "\r\n";
}

// Works in a directory of its own, so that relative paths will do.
class PrepareDirectoryTest : public testing::Test {
  protected:
    PrepareDirectoryTest() { SetCurrentDirectoryA(m_scratch.path().c_str()); }

    unsigned long prepare(const String& path, const String& tracking) {
        m_message = m_failed = "before";
        m_kind = 77;
        return UTIL_prepareAndCreateDir(path, m_message, tracking, m_failed, &m_kind);
    }

    util_test::ScratchDirectory m_scratch;
    const String m_tracking = "made\xE6\x96\x87.rec";
    String m_message, m_failed;
    int m_kind;
};

TEST_F(PrepareDirectoryTest, CreatesAndRecordsWhatIsMissing) {
    const std::string absolute = m_scratch / "a\\";
    const HANDLE in_use = CreateFileA(m_scratch.directory("held").c_str(), GENERIC_READ, 0, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    ASSERT_NE(in_use, INVALID_HANDLE_VALUE);
    for (const String& path :
         {String(absolute + "gr\xC3\xBC\xE6\x96\x87\\\\"), String("held\\b"), String("a\\x"),
          String("a\\x"), String("cut\0off", 7), String("\\\\server\\share"), String("\\rooted"),
          String("server/new")}) {
        EXPECT_EQ(prepare(path, m_tracking), 0u) << path;
        EXPECT_TRUE(m_message == "before" && m_failed == "before" && m_kind == 77) << path;
    }
    CloseHandle(in_use);
    EXPECT_EQ(prepare("a\\\\y", ""), 0u) << "without a record";
    std::string deep = absolute + "deep";
    while (deep.size() < 300)
        deep += "\\directory";
    EXPECT_EQ(prepare(deep, ""), 0u) << "as long as the platform lets it";
    EXPECT_TRUE(XrDirectory::IsDirectory(deep));
    EXPECT_TRUE(XrDirectory::IsDirectory("a\\y"));
    const Names made = records(m_tracking.str());
    EXPECT_EQ(made, (Names{absolute, absolute + "gr\xC3\xBC\xE6\x96\x87\\", "held\\b\\", "a\\x\\",
                           "cut", "server\\", "server\\share\\", "rooted\\", "server/new\\"}));
    for (const std::string& directory : made)
        EXPECT_TRUE(XrDirectory::IsDirectory(directory)) << directory;
}

TEST_F(PrepareDirectoryTest, SaysWhatWhereAndWhy) {
    m_scratch.file("file", "");
    const String start = "Failed to create the directory ";
    const String in_the_way =
        " A file with the same name exists. Please remove the file and try again\n";
    const String not_made = " Please create required directory(s) manually and try again.\n";
    const String warning =
        "Failed to open the file .. Tessaron will not be able to cleanup the alternate paths "
        "created for mounting this replica.\n";
    const struct {
        String path, tracking;
        unsigned long result;
        int kind;
        String failed, message;
    } cases[] = {
        {"file\\below", "", 183, 2, "file\\", start + "file\\" + in_the_way + text_of(183)},
        {"a\\b<\\c", m_tracking, 123, 3, "a\\b<\\", start + "a\\b<\\" + not_made + text_of(123)},
        {"a\\b/c", "", 3, 3, "a\\b/c\\", start + "a\\b/c\\" + not_made + text_of(3)},
        {"Q:\\a", "", 3, 77, "before", "before" + text_of(3)},
        {"\\\\\\", "", 3, 77, "before", "before" + text_of(3)},
        {"new", ".", 0, 1, ".", warning},
        {"Q:\\a", ".", 3, 1, ".", warning + text_of(3)},
        {"b<", ".", 123, 3, "b<\\", start + "b<\\" + not_made + text_of(123)},
    };
    // The system's text says which code it was asked for, and needs UTF-8 to say it.
    const ImportPatch patch(
        "FormatMessageW", [](DWORD flags, LPCVOID, DWORD code, DWORD, wchar_t* buffer) -> DWORD {
            if (flags != 0x1300) return 0;  // allocate, from the system, ignore inserts
            const std::wstring text = L"\u6587" + std::to_wstring(code) + L"\r\n";
            auto* const block = LocalAlloc(LPTR, (text.size() + 1) * sizeof(wchar_t));
            std::memcpy(block, text.data(), text.size() * sizeof(wchar_t));
            *reinterpret_cast<void**>(buffer) = block;
            return static_cast<DWORD>(text.size());
        });
    for (const auto& c : cases) {
        EXPECT_EQ(prepare(c.path, c.tracking), c.result) << c.path;
        EXPECT_EQ(m_kind, c.kind) << c.path;
        EXPECT_EQ(m_failed, c.failed) << c.path;
        EXPECT_EQ(m_message, c.message) << c.path;
    }
    EXPECT_EQ(records(m_tracking.str()), Names{"a\\"}) << "what was made stays";
    EXPECT_TRUE(XrDirectory::IsDirectory("new")) << "also without a record";

    String path = "in-out";
    EXPECT_EQ(UTIL_prepareAndCreateDir(path, m_message, ".", path, nullptr), 0u);
    EXPECT_TRUE(XrDirectory::IsDirectory("in-out")) << "read before it is told";
}

HANDLE open_shared(const std::string& path, DWORD access) {
    return CreateFileA(path.c_str(), access, 7, nullptr, OPEN_EXISTING, 0, nullptr);
}

TEST_F(PrepareDirectoryTest, RecordsWhatItCanAndWaitsForLocksOnlySoLong) {
    const std::string y = "!5\0x\\y\\\0"s, z = "!7\0x\\y\\z\\\0"s;
    const std::string all = "!3\0x\\\0"s + y + z, torn = "3\0x"s;
    struct Write {
        DWORD moved, code;
    };
    const Write locked = {0, ERROR_LOCK_VIOLATION};
    const struct {
        std::vector<Write> writes;  // the first ones; later ones are real
        int release;                // the reader's lock goes after so many pauses; 0: it takes none
        std::string recorded;
        int pauses;
    } cases[] = {
        {{}, 0, all, 0},
        {{{0, ERROR_DISK_FULL}}, 0, y + z, 0},
        {{{3, ERROR_DISK_FULL}}, 0, torn, 0},
        {{{3, 0}}, 0, torn, 0},
        {{locked, locked}, 0, all, 2},
        {{{3, ERROR_LOCK_VIOLATION}}, 0, torn, 0},
        {{}, 5, all, 5},
        {{}, 1000, all, 200},
        {{locked}, 1000, y + z, 200},
    };
    std::vector<Write> writes;
    // The first locks the whole file, as anyone may who can read it, until it is released. The
    // other appends a byte before each real write.
    util::FileHandle reader, rival;
    const ImportPatch write(
        "WriteFile", [&](HANDLE file, const void* data, DWORD size, DWORD* moved, OVERLAPPED* at) {
            if (writes.empty()) {
                WriteFile(rival.get(), "!", 1, moved, nullptr);
                return WriteFile(file, data, size, moved, at);
            }
            const Write told = writes.front();
            writes.erase(writes.begin());
            WriteFile(file, data, told.moved, moved, at);
            SetLastError(told.code);
            return BOOL(told.code == 0);
        });
    int pauses = 0, pauses_to_release = 0;
    const ImportPatch sleep("Sleep", [&](DWORD milliseconds) {
        EXPECT_EQ(milliseconds, 10u);
        if (++pauses == pauses_to_release) reader.reset();
    });
    int number = 0;
    for (const auto& c : cases) {
        const std::string name = "record" + std::to_string(number);
        const std::string tracking = m_scratch.file(name);
        SetCurrentDirectoryA(m_scratch.directory(std::to_string(number++)).c_str());
        if (c.release != 0) {
            reader.reset(open_shared(tracking, GENERIC_READ));
            OVERLAPPED start = {};
            ASSERT_TRUE(LockFileEx(reader.get(), 0, 0, MAXDWORD, MAXDWORD, &start));
        }
        rival.reset(open_shared(tracking, FILE_APPEND_DATA));
        writes = c.writes;
        pauses = 0;
        pauses_to_release = c.release;
        EXPECT_EQ(prepare("x\\y\\z", tracking), 0u);
        reader.reset();
        rival.reset();
        EXPECT_EQ(m_scratch.read(name), c.recorded) << name;
        EXPECT_EQ(pauses, c.pauses) << name;
    }
}

TEST_F(PrepareDirectoryTest, TwoProcessesAtOnceRecordEachDirectoryOnce) {
    const std::string arguments = "one.rec tree 25 \\a\\b\\c\\d";
    Signal go;
    SecondProcess first("prepare", arguments, go), second("prepare", arguments, go);
    ASSERT_TRUE(first.ready.wait() && second.ready.wait());
    go.set();
    EXPECT_TRUE(first.wait() == 0 && second.wait() == 0);
    const Names found = records("one.rec");
    EXPECT_EQ(found.size(), 25 * 5u);
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()).size(), found.size());
    for (const std::string& directory : found)
        EXPECT_TRUE(XrDirectory::IsDirectory(directory)) << directory;
}

TEST_F(PrepareDirectoryTest, KilledProcessesLeaveAtMostOneDirectoryUnrecorded) {
    constexpr int rounds = 20, depth = 30;
    std::string below;
    for (int i = 1; i < depth; ++i)
        below += "\\d";
    int in_the_middle = 0, unrecorded = 0, losses = 0;
    const auto top = [](int round) { return "killed" + std::to_string(round) + "-"; };
    util_test::Kills kills = {"prepare", 60, {}, {}, {}};
    kills.arguments = [&](int round) { return top(round) + "rec " + top(round) + " 1 " + below; };
    kills.watch = [] { Sleep(1); };
    kills.check = [&](int round) {
        Names made;
        for (std::string next = top(round) + "0\\"; XrDirectory::IsDirectory(next); next += "d\\")
            made.push_back(next);
        if (!made.empty() && made.size() < depth) ++in_the_middle;
        const Names recorded = records(top(round) + "rec");
        if (recorded.size() < made.size()) {
            ++unrecorded;
            made.pop_back();
        }
        if (recorded != made) ++losses;
    };
    kills.run(rounds);
    std::printf(
        "kill test, preparing: %d rounds, %d hit the middle, %d lacked the last record, "
        "%d lost more\n",
        rounds, in_the_middle, unrecorded, losses);
    EXPECT_EQ(losses, 0) << "seed " << kills.seed;
    EXPECT_GE(in_the_middle, rounds / 10);
}

}  // namespace
