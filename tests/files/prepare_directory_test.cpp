#include "util/files/prepare_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/second_process.h"
#include "util/files/xr_directory.h"
#include "util/files/xr_file.h"
#include "util/portable/utf8_files.h"

using util_test::ImportPatch;
using util_test::ScratchDirectory;
using util_test::SecondProcess;
using util_test::Signal;

namespace {

using Names = std::vector<std::string>;

Names records(const std::string& tracking_file) {
    XrFile file(tracking_file.c_str(), "r");
    Names result;
    while (file.isValid() && !file.Eof()) {
        std::string directory = "unreadable";
        file >> directory;
        result.push_back(directory);
    }
    return result;
}

// Says which code it was asked for, and needs UTF-8 to say it.
DWORD WINAPI system_text(DWORD flags, LPCVOID, DWORD code, DWORD, LPWSTR buffer, DWORD, va_list*) {
    if (flags != 0x1300) return 0;  // allocate, from the system, ignore inserts
    const std::wstring text = L"\u6587" + std::to_wstring(code) + L"\r\n";
    auto* block = static_cast<wchar_t*>(LocalAlloc(LPTR, (text.size() + 1) * sizeof(wchar_t)));
    *reinterpret_cast<wchar_t**>(buffer) = text.copy(block, text.size()) ? block : nullptr;
    return static_cast<DWORD>(text.size());
}
std::string text_of(unsigned long code) {
    return "\xE6\x96\x87" + std::to_string(code) + "\r\n";
}

struct Outcome {
    unsigned long result;
    String message = "before";
    String failed = "before";
    int kind = 77;
};

class PrepareDirectoryTest : public testing::Test {
  protected:
    PrepareDirectoryTest() { _wgetcwd(m_start, MAX_PATH); }
    ~PrepareDirectoryTest() { _wchdir(m_start); }  // before the scratch directory goes

    Outcome prepare(const std::string& path, const std::string& tracking) {
        Outcome o;
        o.result = UTIL_prepareAndCreateDir(path, o.message, tracking, o.failed, &o.kind);
        return o;
    }
    Outcome prepare(const std::string& path) { return prepare(path, m_tracking); }

    void expect_silence(const Outcome& o, unsigned long result = 0, const char* added = "") {
        EXPECT_EQ(o.result, result);
        EXPECT_EQ(o.message, std::string("before") + added);
        EXPECT_EQ(o.failed, "before");
        EXPECT_EQ(o.kind, 77);
    }

    wchar_t m_start[MAX_PATH];
    ScratchDirectory m_scratch;
    const std::string m_tracking = m_scratch / "made\xE6\x96\x87.rec";
    const ImportPatch m_system_text{"FormatMessageW", system_text};
};

TEST_F(PrepareDirectoryTest, CreatesAndRecordsWhatIsMissing) {
    m_scratch.directory("a");
    const std::string a = m_scratch / "a\\";
    expect_silence(prepare(a + "b\\gr\xC3\xBC\xE6\x96\x87\\\\"));
    EXPECT_EQ(records(m_tracking), (Names{a + "b\\", a + "b\\gr\xC3\xBC\xE6\x96\x87\\"}));
    expect_silence(prepare(a + "b\\x"));
    expect_silence(prepare(a + "b\\x"));
    expect_silence(prepare(a + "\\y", ""));
    EXPECT_TRUE(XrDirectory::IsDirectory(a + "y"));
    EXPECT_EQ(records(m_tracking),
              (Names{a + "b\\", a + "b\\gr\xC3\xBC\xE6\x96\x87\\", a + "b\\x\\"}));
}

TEST_F(PrepareDirectoryTest, FailuresSayWhatWhereAndWhy) {
    m_scratch.file("file", "");
    const std::string start = "Failed to create the directory ";
    const struct {
        const char* name;
        unsigned long result;
        int kind;
        const char* failed;
        const char* text;
    } cases[] = {
        {"file", 183, 2, "file\\",
         " A file with the same name exists. Please remove the file and try again\n"},
        {"file\\below", 183, 2, "file\\",
         " A file with the same name exists. Please remove the file and try again\n"},
        {"made\\a<b\\below", 123, 3, "made\\a<b\\",
         " Please create required directory(s) manually and try again.\n"},
    };
    for (const auto& c : cases) {
        const Outcome o = prepare(m_scratch / c.name);
        EXPECT_EQ(o.result, c.result) << c.name;
        EXPECT_EQ(o.kind, c.kind) << c.name;
        EXPECT_EQ(o.failed, m_scratch / c.failed) << c.name;
        EXPECT_EQ(o.message, start + m_scratch / c.failed + c.text + text_of(c.result));
    }
    EXPECT_EQ(records(m_tracking), Names{m_scratch / "made\\"}) << "what was made stays";
    String message, failed;
    EXPECT_EQ(UTIL_prepareAndCreateDir(m_scratch / "file", message, "", failed, nullptr), 183u);
}

TEST_F(PrepareDirectoryTest, MissingRootsAndEmptyPathsAddTheSystemTextAlone) {
    for (const char* path : {"Q:\\a\\b", "Q:", "", "\\", "\\\\\\"})
        expect_silence(prepare(path), 3, text_of(3).c_str());
}

TEST_F(PrepareDirectoryTest, AnUnopenableTrackingFileIsAWarning) {
    const std::string warning =
        "Failed to open the file " + m_scratch.path() +
        ". Tessaron will not be able to cleanup the alternate paths created for mounting this "
        "replica.\n";
    const struct {
        std::string path;
        unsigned long result;
        std::string message;
    } cases[] = {{m_scratch / "new", 0, warning}, {"Q:\\new", 3, warning + text_of(3)}};
    for (const auto& c : cases) {
        const Outcome o = prepare(c.path, m_scratch.path());
        EXPECT_EQ(o.result, c.result);
        EXPECT_EQ(o.message, c.message);
        EXPECT_EQ(o.failed, m_scratch.path());
        EXPECT_EQ(o.kind, 1);
    }
    EXPECT_TRUE(XrDirectory::IsDirectory(m_scratch / "new"));
    EXPECT_EQ(prepare(m_scratch / "a<b", m_scratch.path()).kind, 3) << "takes its place";

    String path = m_scratch / "in-out", message;
    int kind;
    EXPECT_EQ(UTIL_prepareAndCreateDir(path, message, m_scratch.path(), path, &kind), 0u);
    EXPECT_TRUE(XrDirectory::IsDirectory(m_scratch / "in-out")) << "read before it is told";
}

TEST_F(PrepareDirectoryTest, ADirectoryInUseIsPassedOver) {
    const std::string held = m_scratch.directory("held");
    const HANDLE holder = CreateFileA(held.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    ASSERT_NE(holder, INVALID_HANDLE_VALUE);
    expect_silence(prepare(held + "\\a"));
    CloseHandle(holder);
    EXPECT_EQ(records(m_tracking), Names{held + "\\a\\"});
}

TEST_F(PrepareDirectoryTest, SharesAndRootedPathsAreRelativeAndSlashesSeparateNothing) {
    SetCurrentDirectoryA(m_scratch.path().c_str());
    expect_silence(prepare("drive-less\\a"));
    expect_silence(prepare("\\\\server\\share\\dir"));
    expect_silence(prepare("\\rooted"));
    expect_silence(prepare("server/new"));
    expect_silence(prepare("server/missing/new"), 3, text_of(3).c_str());
    EXPECT_EQ(records(m_tracking),
              (Names{"drive-less\\", "drive-less\\a\\", "server\\", "server\\share\\",
                     "server\\share\\dir\\", "rooted\\", "server/new\\"}));
    for (const std::string& directory : records(m_tracking))
        EXPECT_TRUE(XrDirectory::IsDirectory(m_scratch / directory)) << directory;
}

int allocations_left = -1;  // no limit
void* limited_malloc(size_t size) {
    if (allocations_left == 0) return nullptr;
    if (allocations_left > 0) --allocations_left;
    return std::malloc(size);
}

TEST_F(PrepareDirectoryTest, OutOfMemoryAnywhereIsAFailureAndGivesEverythingBack) {
    const ImportPatch patch("libstdc++-6.dll", "malloc", limited_malloc);
    const String tracking = m_tracking;
    long handles = 0;
    for (const char* name : {"first exceptions keep handles\\b", "a\\b"}) {
        const String path = m_scratch / name;
        handles = util_test::handle_count();  // of the last time
        int failures = -1;
        for (unsigned long result = 8; result == 8; ++failures) {
            Outcome o;
            allocations_left = failures + 1;
            result = UTIL_prepareAndCreateDir(path, o.message, tracking, o.failed, &o.kind);
            allocations_left = -1;
            EXPECT_TRUE(result == 0 || result == 8) << result;
            // A directory that is there is in the record, whatever memory ran out for.
            const std::string parent = path.str().substr(0, path.str().rfind('\\') + 1);
            const Names named = records(m_tracking);
            EXPECT_EQ(std::count(named.begin(), named.end(), parent),
                      XrDirectory::IsDirectory(parent) ? 1 : 0);
        }
        EXPECT_GE(failures, 5);
    }
    EXPECT_EQ(util_test::handle_count(), handles);
}

// --- several processes --------------------------------------------------------------------------

const std::string deep = [] {
    std::string suffix;
    while (suffix.size() < 300)
        suffix += "\\directory";
    return suffix;
}();

// What there is of top and the deep tree under it, from the top.
Names existing(const std::string& top) {
    Names result;
    const std::string whole = top + deep + "\\";
    for (size_t end = top.size(); end < whole.size(); end = whole.find('\\', end + 1)) {
        const std::string directory = whole.substr(0, end + 1);
        if (!XrDirectory::IsDirectory(directory)) break;
        result.push_back(directory);
    }
    return result;
}

// The tree is too deep for the runtime's own walk.
void remove(const Names& directories) {
    for (auto at = directories.rbegin(); at != directories.rend(); ++at)
        EXPECT_EQ(UTF8_rmdir(at->c_str()), 0) << *at;
}

TEST_F(PrepareDirectoryTest, TwoProcessesAtOnceRecordEachDirectoryOnceBetweenThem) {
    constexpr int trees = 25;
    const std::string suffix = "\\a\\b\\c\\d";
    for (const char* second_record : {"2.rec", "1.rec"}) {
        const std::string root = m_scratch.directory(second_record + std::string("-root"));
        const Names files = {m_scratch / "1.rec", m_scratch / second_record};
        std::filesystem::remove(files[0]);
        Signal go;
        const auto arguments = [&](const std::string& file) {
            return file + " " + root + "\\ " + std::to_string(trees) + " " + suffix;
        };
        SecondProcess first("slow", arguments(files[0]), go);
        SecondProcess second("slow", arguments(files[1]), go);
        ASSERT_TRUE(first.ready.wait() && second.ready.wait());
        go.set();
        EXPECT_EQ(first.wait(), 0u);
        EXPECT_EQ(second.wait(), 0u);

        Names found = records(files[0]);
        const size_t by_first = found.size();
        if (files[1] != files[0]) {
            for (const std::string& directory : records(files[1]))
                found.push_back(directory);
        }
        const std::set<std::string> distinct(found.begin(), found.end());
        EXPECT_EQ(found.size(), trees * 5u) << "in " << second_record << ", first " << by_first;
        EXPECT_EQ(distinct.size(), found.size());
        for (const std::string& directory : distinct)
            EXPECT_TRUE(XrDirectory::IsDirectory(directory)) << directory;
    }
}

TEST_F(PrepareDirectoryTest, KilledProcessesLeaveAtMostOneDirectoryUnrecorded) {
    constexpr int rounds = 20;
    using Clock = std::chrono::steady_clock;
    const auto began = Clock::now();
    expect_silence(prepare(m_scratch / "whole" + deep));
    const auto whole = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - began);
    const Names tree = records(m_tracking);
    EXPECT_EQ(tree.size(), 31u);
    remove(tree);

    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    int in_the_middle = 0, unrecorded = 0, losses = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::string prefix = m_scratch / "killed" + std::to_string(round) + "-";
        const std::string tracking = m_scratch / std::to_string(round) + ".rec";
        Signal go;
        SecondProcess victim("prepare", tracking + " " + prefix + " 1 " + deep, go);
        ASSERT_TRUE(victim.ready.wait());
        go.set();
        Sleep(random() % static_cast<DWORD>(whole.count() + 2));
        victim.kill();

        Names made = existing(prefix + "0");
        remove(made);
        if (!made.empty() && made.size() < tree.size()) ++in_the_middle;
        const Names recorded = records(tracking);
        if (recorded.size() < made.size()) {
            ++unrecorded;
            made.pop_back();
        }
        if (recorded != made) ++losses;
    }
    std::printf(
        "kill test, preparing: %d rounds, %d hit the middle, %d lacked the last record, "
        "%d lost more\n",
        rounds, in_the_middle, unrecorded, losses);
    EXPECT_EQ(losses, 0);
    EXPECT_GE(in_the_middle, rounds / 10);
}

}  // namespace
