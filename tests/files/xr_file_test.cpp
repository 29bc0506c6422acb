#include "util/files/xr_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <cerrno>
#include <random>

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"

using namespace std::string_literals;
using util_test::ImportPatch;
using util_test::ScratchDirectory;

namespace {

int code_of(const XrFile& file) {
    int code = 0;
    file.Error(code);
    return code;
}

// --- replacements for util.dll's own calls, told by a script of results
// ---------------------------

struct Step {
    int result;
    int error;  // errno after the call
};
std::vector<Step> script;
size_t calls;
std::vector<unsigned> counts;

int scripted(int, const void*, unsigned count) {
    counts.push_back(count);
    const Step step = calls < script.size() ? script[calls] : Step{-1, EIO};
    ++calls;
    errno = step.error;
    return step.result;
}

void play(std::vector<Step> steps) {
    script = std::move(steps);
    calls = 0;
    counts.clear();
}

int opens;
DWORD open_code;
int failing_open(const wchar_t*, int, ...) {
    ++opens;
    SetLastError(open_code);
    return -1;
}

std::vector<std::pair<int, int>> open_arguments;
int recording_open(const wchar_t* path, int flags, int mode) {
    open_arguments.push_back({flags, mode});
    return _wopen(path, flags, mode);
}

int failing_close(int) {
    SetLastError(1234);
    return -1;
}

class XrFileTest : public testing::Test {
  protected:
    ScratchDirectory m_scratch;
};

// --- opening ------------------------------------------------------------------------------------

TEST_F(XrFileTest, ModeLettersGiveTheRuntimesFlags) {
    const struct {
        const char* mode;
        int flags;
        int permission;
    } cases[] = {
        {"r", 0x8000, 0},        {"w", 0x8301, 0x180},   {"a", 0x8109, 0x180},
        {"r+", 0x8002, 0},       {"w+", 0x8302, 0x180},  {"a+", 0x810A, 0x180},
        {"rw", 0x8300, 0x180},   {"wr", 0x8300, 0x180},  {"ra", 0x8108, 0x180},
        {"aw", 0x8309, 0x180},   {"rt", 0x4000, 0},      {"tw", 0x4301, 0x180},
        {"+", 0x8002, 0},        {"", 0x8000, 0},        {"b", 0x8000, 0},
        {"rb", 0x8000, 0},       {"w+t", 0x4302, 0x180}, {"t", 0x4000, 0},
        {nullptr, 0x102, 0x180},
    };
    const ImportPatch patch("_wopen", recording_open);
    for (const auto& c : cases) {
        const std::string path = m_scratch.file("file", "");
        XrFile file;
        open_arguments.clear();
        EXPECT_EQ(file.Open(path, c.mode), 0) << (c.mode ? c.mode : "null");
        ASSERT_EQ(open_arguments.size(), 1u);
        EXPECT_EQ(open_arguments[0], std::make_pair(c.flags, c.permission))
            << (c.mode ? c.mode : "null");
    }
}

TEST_F(XrFileTest, NullModeKeepsTheRecordSetting) {
    XrFile file;
    ASSERT_EQ(file.Open(m_scratch.file("t", ""), "rt"), 0);
    ASSERT_EQ(file.Open(nullptr), 0);
    file << 42;
    EXPECT_EQ(m_scratch.read("t"), "42") << "text, as set before";
    ASSERT_EQ(file.Open(m_scratch / "new", nullptr), 0) << "creates";
    ASSERT_EQ(file.Open("r"), 0);
    ASSERT_EQ(file.Open(nullptr), 0);
    file << 42;
    EXPECT_EQ(m_scratch.read("new"), "42\0"s) << "binary, as set before";
}

TEST_F(XrFileTest, FailedOpensAreRecorded) {
    const std::string missing = m_scratch / "missing";
    XrFile file(missing.c_str(), "r");
    EXPECT_FALSE(file.isValid());
    EXPECT_TRUE(file.Error());
    EXPECT_EQ(code_of(file), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(file.Open("r"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(file.Open("w"), 0) << "a successful open clears the error";
    EXPECT_FALSE(file.Error());
    EXPECT_EQ(file.Open("", "r"), -1);
    EXPECT_EQ(code_of(file), -1);
    EXPECT_FALSE(file.isValid());

    XrFile nameless(nullptr, "r");
    EXPECT_EQ(code_of(nameless), -1);
    EXPECT_NE(XrFile().Flush(), 0);
    EXPECT_FALSE(XrFile().Error());
}

TEST_F(XrFileTest, OpensAreTriedSevenTimesWhenHandlesRunOut) {
    const ImportPatch patch("_wopen", failing_open);
    const struct {
        DWORD code;
        int attempts;
    } cases[] = {{ERROR_TOO_MANY_OPEN_FILES, 7}, {ERROR_ACCESS_DENIED, 1}};
    for (const auto& c : cases) {
        opens = 0;
        open_code = c.code;
        XrFile file;
        EXPECT_EQ(file.Open("any", "r"), static_cast<int>(c.code));
        EXPECT_EQ(opens, c.attempts);
        EXPECT_EQ(code_of(file), static_cast<int>(c.code));
    }
}

// --- life of the descriptor
// -----------------------------------------------------------------------

TEST_F(XrFileTest, EveryPathGivesTheDescriptorBack) {
    const std::string path = m_scratch.file("f", "text");
    XrFile warm_up(path.c_str(), "r");
    warm_up.Close();
    const auto before = util_test::handle_count();
    {
        XrFile file(path.c_str(), "r");
        file.Open("r+");
        file.Flush();
        EXPECT_FALSE(file.Seek(-1));
        EXPECT_FALSE(file.isValid());
        EXPECT_TRUE(file.Close()) << "the descriptor is still there to be closed";
        EXPECT_TRUE(file.Close()) << "closing nothing is no failure";
        XrFile other(path.c_str(), "r");
        XrFile assigned;
        assigned = other;
    }
    EXPECT_EQ(util_test::handle_count(), before);
}

TEST_F(XrFileTest, CopyingSharesAssigningDuplicates) {
    XrFile file(m_scratch.file("f", "0123456789").c_str(), "r");
    char byte;

    XrFile assigned;
    assigned = file;
    ASSERT_TRUE(assigned.isValid());
    EXPECT_TRUE(file.Close());
    EXPECT_TRUE(assigned.Read(&byte, 1)) << "a descriptor of its own";

    XrFile copy(assigned);
    EXPECT_TRUE(copy.Close());
    EXPECT_FALSE(assigned.Read(&byte, 1)) << "the same descriptor, closed by the copy";
    EXPECT_FALSE(assigned.Close());
}

TEST_F(XrFileTest, AssigningKeepsTheTargetsRecordSettingAndRecordsFailure) {
    XrFile text(m_scratch.file("t", "").c_str(), "rt");
    XrFile binary((m_scratch / "b").c_str(), "w");
    text = binary;
    text << 7;
    EXPECT_EQ(m_scratch.read("b"), "7") << "text, on the binary file's descriptor";

    XrFile target((m_scratch / "b").c_str(), "r");
    const XrFile closed;
    target = closed;
    EXPECT_TRUE(target.Error());
    EXPECT_FALSE(target.isValid());
    EXPECT_FALSE(target.Read(nullptr, 1));
}

TEST_F(XrFileTest, FailedCloseIsRecordedAndClosesTheObject) {
    XrFile file(m_scratch.file("f", "x").c_str(), "r");
    const int fd = _dup(0);  // any call shows which number is free next
    _close(fd);
    {
        const ImportPatch patch("_close", failing_close);
        EXPECT_FALSE(file.Close());
    }
    EXPECT_EQ(code_of(file), 1234);
    EXPECT_FALSE(file.isValid());
    EXPECT_TRUE(file.Close());
    _close(fd - 1);
}

// --- transfers
// ------------------------------------------------------------------------------------

TEST_F(XrFileTest, TransfersFollowTheRetryRule) {
    const Step interrupted{2, EINTR};
    const struct {
        const char* what;
        std::vector<Step> steps;
        bool done;
        int code;
        size_t calls;
    } cases[] = {
        {"whole", {{20, 0}}, true, 0, 1},
        {"nothing", {{0, 0}}, false, 77, 1},
        {"short, accepted", {{5, 0}}, true, 0, 1},
        {"short with an error", {{5, ENOSPC}}, false, ENOSPC, 1},
        {"failed", {{-1, EBADF}}, false, EBADF, 1},
        {"failed without errno", {{-1, 0}}, false, 77, 1},
        {"interrupted, then the rest", {interrupted, {18, 0}}, true, 0, 2},
        {"interrupted without progress", {{-1, EINTR}, {20, 0}}, true, 0, 2},
        {"interrupted five times", {5, interrupted}, false, EIO, 6},
        {"interrupted six times", {6, interrupted}, false, EINTR, 6},
        {"interrupted, then nothing", {interrupted, {0, 0}}, false, 77, 2},
    };
    XrFile file((m_scratch / "f").c_str(), "w");
    char buffer[20] = {};
    for (const char* name : {"_read", "_write"}) {
        const ImportPatch patch(name, scripted);
        for (const auto& c : cases) {
            ASSERT_EQ(file.Open("w+t"), 0);  // text mode: nothing is read ahead
            play(c.steps);
            SetLastError(77);
            const bool done = name[1] == 'r' ? file.Read(buffer, 20) : file.Write(buffer, 20);
            EXPECT_EQ(done, c.done) << c.what;
            EXPECT_EQ(file.Error(), !c.done) << c.what;
            EXPECT_EQ(c.done ? 0 : code_of(file), c.code) << c.what;
            EXPECT_EQ(calls, c.calls) << c.what;
            EXPECT_TRUE(file.isValid()) << "transfers never invalidate";
        }
    }
    EXPECT_EQ(counts, (std::vector<unsigned>{20, 18})) << "the rest is asked for";
}

TEST_F(XrFileTest, ReadsAndWritesBlocks) {
    XrFile file((m_scratch / "f").c_str(), "w+");
    EXPECT_TRUE(file.Write("a\r\n\0b", 5));
    EXPECT_TRUE(file.SeekToBegin());
    char buffer[10] = "#########";
    EXPECT_TRUE(file.Read(buffer, 9)) << "a file that ends early is no failure";
    EXPECT_EQ(std::string(buffer, 6), "a\r\n\0b#"s);
    EXPECT_FALSE(file.Read(buffer, 1)) << "at the end";
    EXPECT_TRUE(file.Error());
    EXPECT_FALSE(file.Write(nullptr, 1));
    EXPECT_EQ(code_of(file), -1);
    EXPECT_FALSE(file.Write("", 0)) << "a transfer of nothing";
    EXPECT_TRUE(file.isValid());
    EXPECT_FALSE(file.Readln(nullptr, 5));
}

// --- lines
// ----------------------------------------------------------------------------------------

TEST_F(XrFileTest, ReadsLinesExactlyToTheirEnd) {
    XrFile file(m_scratch.file("f", "one\r\n\ntwelve chars\nlast").c_str(), "r");
    char buffer[32];
    const struct {
        size_t size;
        const char* bytes;
        bool done;
    } reads[] = {
        {32, "one\r\n", true}, {0, "\n", true},     {7, "twelve ", true},
        {1, "c", true},        {5, "hars\n", true}, {32, "last", false},
    };
    long position = 0;
    for (const auto& r : reads) {
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(file.Readln(buffer, r.size), r.done) << r.bytes;
        const std::string expected(r.bytes);
        EXPECT_EQ(std::string(buffer, expected.size() + 1), expected + "#") << "and nothing behind";
        position += static_cast<long>(expected.size());
        EXPECT_EQ(file.Tell(), position);
    }
    EXPECT_TRUE(file.Error());
    EXPECT_TRUE(file.isValid());
}

// Reading ahead must not show: every line, result and position as read byte by byte.
TEST_F(XrFileTest, ReadingAheadEqualsReadingByteByByte) {
    const unsigned seed = 4711;
    std::mt19937 random(seed);
    std::string content;
    for (int line = 0; line < 400; ++line) {
        for (unsigned n = random() % (line % 7 ? 60 : 400); n > 0; --n) {
            content += static_cast<char>(random() % 16 ? 'a' + random() % 26 : random() % 256);
        }
        content += '\n';
    }
    content += "no line feed";
    const std::string path = m_scratch.file("f", content);
    XrFile ahead(path.c_str(), "r");
    XrFile sharing;
    sharing = ahead;
    const int plain = _open(path.c_str(), _O_RDONLY | _O_BINARY);
    for (;;) {
        const size_t size = random() % 300;
        std::string expected, actual(1000, '#');
        bool expected_done = false;
        char byte;
        while (!expected_done && _read(plain, &byte, 1) == 1) {
            expected += byte;
            expected_done = byte == '\n' || expected.size() == size;
        }
        const bool done = ahead.Readln(actual.data(), size);
        ASSERT_EQ(done, expected_done) << "seed " << seed;
        ASSERT_EQ(actual, expected + std::string(1000 - expected.size(), '#')) << "seed " << seed;
        ASSERT_EQ(sharing.Tell(), _lseek(plain, 0, SEEK_CUR)) << "seen through a shared position";
        if (!done) break;
    }
    _close(plain);
}

// As with a lock on the bytes from position 5 on (which Wine would let through).
int locked_read(int fd, void* buffer, unsigned count) {
    if (_lseek(fd, 0, SEEK_CUR) + static_cast<long>(count) <= 5) return _read(fd, buffer, count);
    errno = EACCES;
    SetLastError(ERROR_LOCK_VIOLATION);
    return -1;
}

TEST_F(XrFileTest, ReadsALineBeforeALockedRange) {
    XrFile file(m_scratch.file("f", "line\nlocked").c_str(), "r");
    const ImportPatch patch("_read", locked_read);
    char buffer[16];
    EXPECT_TRUE(file.Readln(buffer, sizeof buffer));
    EXPECT_EQ(std::string(buffer, 5), "line\n");
    EXPECT_FALSE(file.Readln(buffer, sizeof buffer));
    EXPECT_EQ(code_of(file), ERROR_LOCK_VIOLATION);
}

TEST_F(XrFileTest, ReadsLinesFromAPipeAndThroughTranslation) {
    const char* pipe_name = "\\\\.\\pipe\\util-xr-file-test";
    const HANDLE pipe =
        CreateNamedPipeA(pipe_name, PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 100, 100, 0, nullptr);
    XrFile file(pipe_name, "r+");
    ASSERT_TRUE(file.isValid());
    DWORD written;
    ASSERT_TRUE(WriteFile(pipe, "first\nsecond\n", 13, &written, nullptr));
    char buffer[16];
    EXPECT_TRUE(file.Readln(buffer, sizeof buffer));
    EXPECT_EQ(std::string(buffer, 6), "first\n");
    EXPECT_TRUE(file.Readln(buffer, sizeof buffer)) << "nothing was lost to reading ahead";
    EXPECT_EQ(std::string(buffer, 7), "second\n");
    CloseHandle(pipe);

    XrFile text(m_scratch.file("t", "a\r\nb\r\n").c_str(), "rt");
    EXPECT_TRUE(text.Readln(buffer, sizeof buffer));
    EXPECT_EQ(std::string(buffer, 2), "a\n");
    EXPECT_EQ(text.Tell(), 3);
}

// --- position and state
// ---------------------------------------------------------------------------

TEST_F(XrFileTest, TellsSizeTimeAndPosition) {
    const std::string path = m_scratch.file("f", "0123456789");
    XrFile file(path.c_str(), "r");
    EXPECT_EQ(file.Size(), 10);
    EXPECT_NEAR(static_cast<double>(file.LastModified()), static_cast<double>(time(nullptr)), 60);
    EXPECT_TRUE(file.Seek(4));
    EXPECT_EQ(file.Tell(), 4);
    EXPECT_FALSE(file.Eof());
    EXPECT_EQ(file.Tell(), 4) << "Eof leaves the position";
    EXPECT_TRUE(file.Seek(10));
    EXPECT_TRUE(file.Eof());
    EXPECT_FALSE(file.IsEmpty());
    EXPECT_EQ(file.Tell(), 0) << "IsEmpty goes to the start";
    EXPECT_TRUE(file.Exists());
    EXPECT_TRUE(XrFile::Exists(path, 4));
    EXPECT_FALSE(XrFile::Exists(m_scratch / "missing", 0));
    EXPECT_TRUE(XrFile(m_scratch.file("empty", "").c_str(), "r").IsEmpty());

    EXPECT_EQ(file.Flush(), 0);
    EXPECT_EQ(file.Size(), 10);
    XrFile writing(path.c_str(), "w");
    writing << 5;
    EXPECT_EQ(writing.Size(), 2);
    EXPECT_EQ(writing.Flush(), 0);
    EXPECT_EQ(writing.Size(), 0) << "a file opened with w is emptied";
}

TEST_F(XrFileTest, ClosedObjectsFailInTheirTwoStyles) {
    const struct {
        const char* what;
        std::function<bool(XrFile&)> call;
        bool result;
        bool stays_valid;
    } cases[] = {
        {"Read",
         [](XrFile& f) {
             char c;
             return f.Read(&c, 1);
         },
         false, true},
        {"Readln",
         [](XrFile& f) {
             char c;
             return f.Readln(&c, 1);
         },
         false, true},
        {"Write", [](XrFile& f) { return f.Write("x", 1); }, false, true},
        {"number",
         [](XrFile& f) {
             int n;
             f >> n;
             return f.Error();
         },
         true, true},
        {"text",
         [](XrFile& f) {
             String s;
             f >> s;
             return f.Error();
         },
         true, false},
        {"IsEmpty", [](XrFile& f) { return f.IsEmpty(); }, true, false},
        {"Eof", [](XrFile& f) { return f.Eof(); }, true, false},
        {"Seek", [](XrFile& f) { return f.Seek(0); }, false, false},
        {"SeekToBegin", [](XrFile& f) { return f.SeekToBegin(); }, false, false},
        {"Tell", [](XrFile& f) { return f.Tell() == -1 && !f.Error(); }, true, true},
        {"Size", [](XrFile& f) { return f.Size() == 0 && !f.Error(); }, true, true},
    };
    for (const auto& c : cases) {
        XrFile file(m_scratch.file("f", "x").c_str(), "r+");
        XrFile(file).Close();  // closes the shared descriptor behind the object's back
        EXPECT_EQ(c.call(file), c.result) << c.what;
        EXPECT_EQ(file.isValid(), c.stays_valid) << c.what;
    }
    EXPECT_EQ(XrFile().Size(), 0);
    EXPECT_EQ(XrFile().LastModified(), 0);
}

TEST(XrFileNameTest, IsWhatFollowsTheLastSeparator) {
    const struct {
        const char* path;
        const char* name;
    } cases[] = {
        {"C:\\dir/sub\\file.txt", "file.txt"},
        {"dir/", ""},
        {"plain", "plain"},
        {"", ""},
        {"a\\b/c", "c"},
        {"\\", ""},
        {"C:x", "C:x"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(XrFile(c.path, "r").getName(), c.name) << c.path;
}

// --- records
// --------------------------------------------------------------------------------------

TEST_F(XrFileTest, WritesRecordsByteForByte) {
    const std::string with_nul("a\0b", 3);
    const auto write_all = [&](XrFile& file) {
        file << 42 << -7L << static_cast<unsigned short>(65535) << "ab" << with_nul
             << String(with_nul);
    };
    XrFile binary((m_scratch / "b").c_str(), "w");
    write_all(binary);
    binary << static_cast<const char*>(nullptr) << INT_MIN;
    EXPECT_FALSE(binary.Error());
    EXPECT_EQ(m_scratch.read("b"),
              "42\0-7\0"
              "65535\0"
              "3\0ab\0"
              "4\0a\0b\0"
              "2\0a\0"
              "1\0\0"
              "-2147483648\0"s);
    XrFile text((m_scratch / "t").c_str(), "wt");
    write_all(text);
    EXPECT_FALSE(text.Error());
    EXPECT_EQ(m_scratch.read("t"), "42-765535aba\0ba"s);
    text << "";
    EXPECT_TRUE(text.Error()) << "an empty text is a transfer of nothing";
}

TEST_F(XrFileTest, ReadsBackWhatItWrote) {
    XrFile file((m_scratch / "f").c_str(), "w+");
    const std::string long_text(100000, 'x');
    file << 42 << "ab" << long_text << -5L << static_cast<unsigned short>(7) << "" << 1;
    file.SeekToBegin();
    int number = 0, last = 0;
    long wide = 0;
    unsigned short narrow = 0;
    std::string text = "old", empty = "old";
    String string = "old";
    file >> number >> text >> string >> wide >> narrow >> empty >> last;
    EXPECT_FALSE(file.Error());
    EXPECT_EQ(number, 42);
    EXPECT_EQ(text, "ab");
    EXPECT_EQ(string, long_text);
    EXPECT_EQ(wide, -5);
    EXPECT_EQ(narrow, 7);
    EXPECT_EQ(empty, "");
    EXPECT_EQ(last, 1);
    EXPECT_TRUE(file.Eof()) << "the position is exact";
}

TEST_F(XrFileTest, DamagedNumbersAreReadAsAtoiDoesOrFail) {
    const struct {
        std::string bytes;
        bool done;
        int value;
        long position;
    } cases[] = {
        {"12\0rest"s, true, 12, 3},
        {"\0"s, true, 0, 1},
        {"x9\0"s, true, 0, 3},
        {" -8z\0"s, true, -8, 5},
        {"12"s, false, 99, 2},
        {""s, false, 99, 0},
        {"99999999999\0"s, true, 1215752191, 12},
        {std::string(100000, '0') + "7\0"s, true, 7, 100002},
    };
    for (const auto& c : cases) {
        XrFile file(m_scratch.file("f", c.bytes).c_str(), "r");
        int value = 99;
        file >> value;
        EXPECT_EQ(!file.Error(), c.done) << c.bytes.substr(0, 20);
        EXPECT_EQ(value, c.value) << c.bytes.substr(0, 20);
        EXPECT_EQ(file.Tell(), c.position) << c.bytes.substr(0, 20);
        EXPECT_TRUE(file.isValid());
    }
    XrFile file(m_scratch.file("f", "65537\0"s).c_str(), "r");
    unsigned short narrow = 0;
    file >> narrow;
    EXPECT_EQ(narrow, 1) << "cut to 16 bits";
}

TEST_F(XrFileTest, DamagedTextsAreBoundedOrFail) {
    const struct {
        std::string bytes;
        bool done;
        std::string value;
        int code;
        bool valid;
    } cases[] = {
        {"3\0ab\0"s, true, "ab", 0, true},
        {"3\0a\0x"s, true, "a", 0, true},
        {"3\0abc"s, true, "abc", 0, true},
        {"9\0ab"s, true, "ab", 0, true},
        {"2147483647\0abc"s, true, "abc", 0, true},
        {"0\0abc"s, false, "old", -1, false},
        {"-5\0abc"s, false, "old", -1, false},
        {"x\0abc"s, false, "old", -1, false},
        {""s, false, "old", -1, false},
        {"3"s, false, "old", -1, false},
    };
    for (const auto& c : cases) {
        XrFile file(m_scratch.file("f", c.bytes).c_str(), "r");
        std::string value = "old";
        file >> value;
        EXPECT_EQ(!file.Error(), c.done) << testing::PrintToString(c.bytes);
        EXPECT_EQ(value, c.value) << testing::PrintToString(c.bytes);
        EXPECT_EQ(code_of(file), c.code) << testing::PrintToString(c.bytes);
        EXPECT_EQ(file.isValid(), c.valid) << testing::PrintToString(c.bytes);
    }
    for (const char* bytes : {"3\0", "2147483647\0"}) {
        XrFile file(m_scratch.file("f", std::string(bytes) + '\0').c_str(), "r");
        String value = "old";
        file >> value;
        EXPECT_TRUE(file.Error()) << "nothing behind the length";
        EXPECT_TRUE(file.isValid()) << "a failed transfer, not a bad length";
        EXPECT_EQ(value, "old");
    }
}

void* failing_new(size_t, const std::nothrow_t&) {
    return nullptr;
}

TEST_F(XrFileTest, TextThatCannotBeAllocatedIsTheDocumentedFailure) {
    XrFile file(m_scratch.file("f", "3\0ab\0"s).c_str(), "r");
    std::string value = "old";
    const ImportPatch patch("_ZnayRKSt9nothrow_t", failing_new);
    file >> value;
    EXPECT_EQ(code_of(file), -1);
    EXPECT_FALSE(file.isValid());
    EXPECT_EQ(value, "old");
}

TEST_F(XrFileTest, TextModeTakesUpTo256BytesAtOnce) {
    const struct {
        std::string bytes, value;
    } cases[] = {
        {"abc\0def"s, "abc"},
        {"abc", "abc"},
        {std::string(300, 'x'), std::string(256, 'x')},
    };
    for (const auto& c : cases) {
        XrFile file(m_scratch.file("t", c.bytes).c_str(), "rt");
        std::string value = "old";
        file >> value;
        EXPECT_EQ(value, c.value);
        EXPECT_FALSE(file.Error());
    }
}

}  // namespace
