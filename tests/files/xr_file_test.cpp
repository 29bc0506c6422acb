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

// util.dll's own _read and _write, told by a script of results.
struct Step {
    int result;
    int error;  // errno after the call
};
std::vector<Step> script;
std::vector<std::pair<const char*, unsigned>> transfers;

int scripted(int, const char* at, unsigned count) {
    transfers.push_back({at, count});
    const Step step =
        transfers.size() <= script.size() ? script[transfers.size() - 1] : Step{-1, EIO};
    errno = step.error;
    return step.result;
}

std::vector<std::pair<int, int>> opens;  // flags and permission
DWORD open_code;
int recording_open(const wchar_t* path, int flags, int mode) {
    opens.push_back({flags, mode});
    if (open_code == 0) return _wopen(path, flags, mode);
    SetLastError(open_code);
    return -1;
}

class XrFileTest : public testing::Test {
  protected:
    // A file with these bytes, opened.
    XrFile open(const std::string& bytes, const char* mode = "r") {
        return XrFile(m_scratch.file("f", bytes).c_str(), mode);
    }
    std::string bytes() const { return m_scratch.read("f"); }
    ScratchDirectory m_scratch;
    const std::string m_path = m_scratch / "f";
};

TEST_F(XrFileTest, ModeLettersGiveTheRuntimesFlags) {
    const struct {
        const char* mode;
        int flags;
        int permission;
    } cases[] = {
        {"r", 0x8000, 0},        {"w", 0x8301, 0x180},   {"a", 0x8109, 0x180},
        {"r+", 0x8002, 0},       {"w+", 0x8302, 0x180},  {"a+", 0x810A, 0x180},
        {"rw", 0x8300, 0x180},   {"ra", 0x8108, 0x180},  {"aw", 0x8309, 0x180},
        {"tw", 0x4301, 0x180},   {"t+w", 0x4302, 0x180}, {"t", 0x4000, 0},
        {"", 0x8000, 0},         {"b", 0x8000, 0},       {"+", 0x8002, 0},
        {nullptr, 0x102, 0x180},
    };
    const ImportPatch patch("_wopen", recording_open);
    open_code = 0;
    for (const auto& c : cases) {
        XrFile file;
        opens.clear();
        EXPECT_EQ(file.Open(m_scratch.file("f"), c.mode), 0);
        EXPECT_EQ(opens.at(0), std::make_pair(c.flags, c.permission)) << util::view_of(c.mode);
    }
    const struct {
        DWORD code;
        size_t attempts;
    } failures[] = {{ERROR_TOO_MANY_OPEN_FILES, 7}, {ERROR_ACCESS_DENIED, 1}};
    for (const auto& c : failures) {
        opens.clear();
        open_code = c.code;
        XrFile file;
        EXPECT_EQ(file.Open("any", "r"), static_cast<int>(c.code));
        EXPECT_EQ(opens.size(), c.attempts);
        EXPECT_EQ(code_of(file), static_cast<int>(c.code));
    }
}

TEST_F(XrFileTest, NullModeKeepsTheRecordSetting) {
    XrFile file = open("", "rt");
    for (const auto& stored : {"42"s, "42\0"s}) {
        ASSERT_EQ(file.Open(nullptr), 0);
        file << 42;
        EXPECT_EQ(bytes(), stored);
        ASSERT_EQ(file.Open("r"), 0);  // binary from here on
    }
}

TEST_F(XrFileTest, FailedOpensAreRecordedUntilOneSucceeds) {
    for (const char* path : {"C:\\dir/sub\\name", "a\\b/name", "name"})
        EXPECT_EQ(XrFile(path, "r").getName(), "name") << path;
    EXPECT_EQ(XrFile("dir/", "r").getName(), "");
    XrFile file(m_path.c_str(), "r");
    EXPECT_FALSE(file.isValid());
    EXPECT_TRUE(file.Error());
    EXPECT_EQ(code_of(file), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(file.Open("w"), 0);
    EXPECT_FALSE(file.Error());
    EXPECT_EQ(file.Open("", "r"), -1);
    EXPECT_EQ(code_of(file), -1);
    EXPECT_FALSE(file.isValid());
    EXPECT_EQ(code_of(XrFile(nullptr, "r")), -1);
    EXPECT_FALSE(XrFile().Error());
}

TEST_F(XrFileTest, DescriptorsAreGivenBack) {
    XrFile file = open("text");
    file.Close();
    const auto before = util_test::handle_count();
    {
        file.Open("r");
        file.Open("r+");
        file.Flush();
        EXPECT_FALSE(file.Seek(-1));
        EXPECT_TRUE(file.Close()) << "still there although no longer valid";
        EXPECT_TRUE(file.Close()) << "closing nothing is no failure";
        const XrFile other(m_path.c_str(), "r");
        XrFile assigned;
        assigned = other;
    }
    EXPECT_EQ(util_test::handle_count(), before);

    file.Open("r");
    XrFile twin;
    twin = file;  // so that the descriptor that stays open below is closed at last
    const ImportPatch patch("_close", util_test::fails<-1, 1234>);
    EXPECT_FALSE(file.Close());
    EXPECT_TRUE(file.Error());
    EXPECT_EQ(code_of(file), 1234);
    EXPECT_FALSE(file.isValid());
}

TEST_F(XrFileTest, CopyingSharesAssigningDuplicates) {
    XrFile file = open("0123456789");
    char byte;
    XrFile assigned;
    assigned = file;
    EXPECT_TRUE(file.Close());
    EXPECT_TRUE(assigned.Read(&byte, 1)) << "a descriptor of its own";
    XrFile copy(assigned);
    EXPECT_TRUE(copy.Close());
    EXPECT_FALSE(assigned.Read(&byte, 1)) << "the same descriptor, closed by the copy";
}

TEST_F(XrFileTest, AssigningTakesAllButTheRecordSetting) {
    XrFile source = open("", "w");
    EXPECT_FALSE(source.Read(&std::string(1, ' ')[0], 1)) << "write only";
    XrFile target(m_scratch.file("t", "old").c_str(), "rt");
    target = source;
    EXPECT_TRUE(target.Error() && target.isValid());
    EXPECT_EQ(code_of(target), code_of(source));
    EXPECT_EQ(target.getName(), "f");
    target << 7;
    EXPECT_EQ(bytes(), "7") << "text, on the binary file's descriptor";
    EXPECT_EQ(target.Flush(), 0);
    EXPECT_EQ(bytes(), "") << "with the flags of the source";

    target = XrFile();
    EXPECT_TRUE(target.Error());
    EXPECT_FALSE(target.isValid());
    EXPECT_EQ(target.Tell(), -1);
}

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
        {"interrupted without progress", {{-1, EINTR}, {20, 0}}, true, 0, 2},
        {"interrupted five times", {5, interrupted}, false, EIO, 6},
        {"interrupted six times", {6, interrupted}, false, EINTR, 6},
        {"interrupted, then nothing", {interrupted, {0, 0}}, false, 77, 2},
        {"interrupted, then the rest", {interrupted, {18, 0}}, true, 0, 2},
    };
    XrFile file = open("");
    char buffer[20] = {};
    for (const bool reading : {true, false}) {
        const ImportPatch patch(reading ? "_read" : "_write", scripted);
        for (const auto& c : cases) {
            ASSERT_EQ(file.Open("w+t"), 0);  // text mode: nothing is read ahead
            script = c.steps;
            transfers.clear();
            errno = EINTR;  // a stale value decides nothing
            SetLastError(77);
            const bool done = reading ? file.Read(buffer, 20) : file.Write(buffer, 20);
            EXPECT_EQ(done, c.done) << c.what;
            EXPECT_EQ(file.Error(), !c.done) << c.what;
            EXPECT_EQ(done ? 0 : code_of(file), c.code) << c.what;
            EXPECT_EQ(transfers.size(), c.calls) << c.what;
            EXPECT_TRUE(file.isValid()) << "transfers never invalidate";
        }
        EXPECT_EQ(transfers.back(), std::make_pair(static_cast<const char*>(buffer + 2), 18u));
    }
}

int interruptions, read_calls;
int interrupted_read(int fd, void* buffer, unsigned count) {
    if (++read_calls > interruptions) return _read(fd, buffer, count);
    errno = EINTR;
    return -1;
}

TEST_F(XrFileTest, ChunksReadAheadFollowTheRetryRule) {
    const struct {
        int interruptions;
        bool line;  // else a number
        bool done;
        int code, read_calls;
    } cases[] = {
        {5, false, true, 0, 6},
        {6, false, false, EINTR, 6},
        {1, true, false, 77, 1},  // lines have no such rule
    };
    const ImportPatch patch("_read", interrupted_read);
    for (const auto& c : cases) {
        XrFile file = open("42\0rest"s);
        int number = 0;
        char buffer[9];
        interruptions = c.interruptions;
        read_calls = 0;
        SetLastError(77);
        c.line ? void(file.Readln(buffer, sizeof buffer)) : void(file >> number);
        EXPECT_EQ(file.Error(), !c.done) << c.interruptions;
        EXPECT_EQ(code_of(file), c.code) << c.interruptions;
        EXPECT_EQ(read_calls, c.read_calls) << c.interruptions;
        EXPECT_EQ(number, c.done ? 42 : 0);
    }
}

// Reading ahead must not show: every line, result and position as read byte by byte.
TEST_F(XrFileTest, ReadingAheadEqualsReadingByteByByte) {
    const unsigned seed = 4711;
    std::mt19937 random(seed);
    std::string content;
    for (int i = 0; i < 20000; ++i)
        content += random() % 60 ? static_cast<char>(random()) : '\n';
    XrFile ahead = open(content);
    XrFile sharing;
    sharing = ahead;
    const int plain = _open(m_path.c_str(), _O_RDONLY | _O_BINARY);
    for (bool done = true; done;) {
        const size_t size = random() % (random() % 4 ? 300 : 3);  // 0: as much as there is
        std::string expected, actual(2000, '#');
        bool expected_done = false;
        char byte;
        while (!expected_done && _read(plain, &byte, 1) == 1) {
            expected += byte;
            expected_done = byte == '\n' || expected.size() == size;
        }
        done = ahead.Readln(actual.data(), size);
        ASSERT_EQ(done, expected_done) << "seed " << seed;
        ASSERT_EQ(actual, expected + std::string(2000 - expected.size(), '#')) << "seed " << seed;
        ASSERT_EQ(sharing.Tell(), _lseek(plain, 0, SEEK_CUR)) << "seen through a shared position";
    }
    EXPECT_TRUE(ahead.Error() && ahead.isValid()) << "a last line without an end is a failure";
    EXPECT_FALSE(open("x").Readln(nullptr, 5));
    _close(plain);
}

// As with a lock on the bytes from position 5 on (which Wine would let through).
int locked_read(int fd, void* buffer, unsigned count) {
    if (_lseek(fd, 0, SEEK_CUR) + static_cast<long>(count) <= 5) return _read(fd, buffer, count);
    errno = EACCES;
    SetLastError(ERROR_LOCK_VIOLATION);
    return -1;
}

TEST_F(XrFileTest, ReadsByteByByteWhereReadingAheadWouldShow) {
    char buffer[16];
    const auto reads = [&](XrFile& file, const std::string& line) {
        return file.Readln(buffer, sizeof buffer) && !line.compare(0, 99, buffer, line.size());
    };
    {
        XrFile locked = open("line\nlocked");
        const ImportPatch patch("_read", locked_read);
        errno = 0;
        EXPECT_TRUE(reads(locked, "line\n"));
        EXPECT_EQ(errno, 0) << "nothing is left of the chunk that failed";
        EXPECT_FALSE(reads(locked, ""));
        EXPECT_EQ(code_of(locked), ERROR_LOCK_VIOLATION);
    }
    const char* pipe_name = "\\\\.\\pipe\\util-xr-file-test";
    const HANDLE pipe =
        CreateNamedPipeA(pipe_name, PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 100, 100, 0, nullptr);
    XrFile piped(pipe_name, "r+");
    DWORD written;
    ASSERT_TRUE(WriteFile(pipe, "first\nsecond\n", 13, &written, nullptr));
    EXPECT_TRUE(reads(piped, "first\n"));
    EXPECT_TRUE(reads(piped, "second\n")) << "not lost to reading ahead";
    ASSERT_TRUE(WriteFile(pipe, "2\0x\0#\n", 6, &written, nullptr));
    std::string record;
    piped >> record;
    EXPECT_EQ(record, "x");
    EXPECT_TRUE(reads(piped, "#\n")) << "nor to a record";
    ASSERT_TRUE(WriteFile(pipe, "70000\0cut", 9, &written, nullptr));
    CloseHandle(pipe);
    piped >> record;
    EXPECT_EQ(record, "cut") << "whose end cannot be known";

    XrFile text = open("a\r\nb\r\n", "rt");
    EXPECT_TRUE(reads(text, "a\n"));
    EXPECT_EQ(text.Tell(), 3);
}

TEST_F(XrFileTest, TellsSizeTimeAndPosition) {
    XrFile file = open("0123456789");
    EXPECT_EQ(file.Size(), 10);
    EXPECT_NEAR(static_cast<double>(file.LastModified()), static_cast<double>(time(nullptr)), 60);
    EXPECT_TRUE(file.Seek(4));
    EXPECT_FALSE(file.Eof());
    EXPECT_EQ(file.Tell(), 4) << "Eof leaves the position";
    EXPECT_TRUE(file.Seek(10) && file.Eof());
    EXPECT_FALSE(file.IsEmpty());
    EXPECT_EQ(file.Tell(), 0) << "IsEmpty goes to the start";
    EXPECT_TRUE(open("").IsEmpty());
    EXPECT_TRUE(file.Exists() && XrFile::Exists(m_path, 6));
    EXPECT_FALSE(XrFile::Exists(m_scratch / "missing", 0));
    SetFileAttributesA(m_path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(XrFile::Exists(m_path, 2));
    EXPECT_EQ(XrFile().Size() + XrFile().LastModified(), 0);
}

TEST_F(XrFileTest, ObjectsFailInTheirTwoStyles) {
    char byte;
    int number;
    String text;
    const struct {
        const char* what;
        std::function<bool(XrFile&)> call;
        bool result;
        bool stays_valid;
        int code;
    } cases[] = {
        {"Read", [&](XrFile& f) { return f.Read(&byte, 1); }, false, true, EBADF},
        {"Readln", [&](XrFile& f) { return f.Readln(&byte, 1); }, false, true, 77},
        {"Write", [](XrFile& f) { return f.Write("x", 1); }, false, true, EBADF},
        {"null", [](XrFile& f) { return f.Write(nullptr, 1); }, false, true, -1},
        {"null read", [](XrFile& f) { return f.Read(nullptr, 1); }, false, true, -1},
        {"null line", [](XrFile& f) { return f.Readln(nullptr, 1); }, false, true, -1},
        {"number", [&](XrFile& f) { return (f >> number).Error(); }, true, true, EBADF},
        {"text", [&](XrFile& f) { return (f >> text).Error(); }, true, false, -1},
        {"IsEmpty", [](XrFile& f) { return f.IsEmpty(); }, true, false, 77},
        {"Eof", [](XrFile& f) { return f.Eof(); }, true, false, 77},
        {"Seek", [](XrFile& f) { return f.Seek(0); }, false, false, 77},
        {"Tell", [](XrFile& f) { return f.Tell() == -1; }, true, true, 0},
        {"Size", [](XrFile& f) { return f.Size() == 0; }, true, true, 0},
    };
    for (const auto& c : cases) {
        XrFile file = open("x", "r+");
        XrFile(file).Close();  // closes the shared descriptor behind the object's back
        SetLastError(77);
        EXPECT_EQ(c.call(file), c.result) << c.what;
        EXPECT_EQ(file.isValid(), c.stays_valid) << c.what;
        EXPECT_EQ(code_of(file), c.code) << c.what;
        EXPECT_EQ(file.Error(), c.code != 0) << c.what;
    }
}

TEST_F(XrFileTest, WritesRecordsByteForByteAndReadsThemBack) {
    const std::string with_nul("a\0b", 3);
    const std::string long_text(100000, 'x');
    XrFile file = open("", "w+");
    file << 42 << INT_MIN << -7L << static_cast<unsigned short>(65535) << "ab" << with_nul
         << String(with_nul) << static_cast<const char*>(nullptr) << long_text;
    EXPECT_EQ(bytes(),
              "42\0-2147483648\0-7\0"
              "65535\0"
              "3\0ab\0"
              "4\0a\0b\0"
              "2\0a\0"
              "1\0\0"
              "100001\0"s +
                  long_text + '\0');
    file.SeekToBegin();
    int number = 0, least = 0;
    long wide = 0;
    unsigned short narrow = 0;
    std::string text, cut, empty = "old", whole;
    String string;
    file >> number >> least >> wide >> narrow >> text >> cut >> string >> empty >> whole;
    EXPECT_FALSE(file.Error());
    EXPECT_TRUE(number == 42 && least == INT_MIN && wide == -7 && narrow == 65535);
    EXPECT_TRUE(text == "ab" && cut == "a" && string == "a" && empty.empty() && whole == long_text);
    EXPECT_TRUE(file.Eof()) << "the position is exact";

    XrFile plain = open("", "wt");
    plain << 42 << "ab" << with_nul;
    EXPECT_FALSE(plain.Error());
    EXPECT_EQ(bytes(), "42aba\0b"s);
    plain << "";
    EXPECT_TRUE(plain.Error()) << "an empty text is a transfer of nothing";
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
        XrFile file = open(c.bytes);
        int value = 99;
        file >> value;
        EXPECT_EQ(!file.Error(), c.done) << c.bytes.substr(0, 20);
        EXPECT_EQ(value, c.value) << c.bytes.substr(0, 20);
        EXPECT_EQ(file.Tell(), c.position) << c.bytes.substr(0, 20);
    }
    unsigned short narrow = 0;
    open("65537\0"s) >> narrow;
    EXPECT_EQ(narrow, 1) << "cut to 16 bits";
}

TEST_F(XrFileTest, DamagedTextsAreBoundedOrFail) {
    const struct {
        std::string bytes, value;
        bool done;
        bool valid;
    } cases[] = {
        {"3\0a\0x"s, "a", true, true},         {"3\0abc"s, "abc", true, true},
        {"9\0ab"s, "ab", true, true},          {"2147483647\0abc"s, "abc", true, true},
        {"0\0abc"s, "old", false, false},      {"-5\0abc"s, "old", false, false},
        {"x\0abc"s, "old", false, false},      {""s, "old", false, false},
        {"3"s, "old", false, false},           {"3\0"s, "old", false, true},
        {"2147483647\0"s, "old", false, true},
    };
    for (const auto& c : cases) {
        XrFile file = open(c.bytes);
        String value = "old";
        file >> value;
        EXPECT_EQ(value, c.value) << testing::PrintToString(c.bytes);
        EXPECT_EQ(!file.Error(), c.done) << testing::PrintToString(c.bytes);
        EXPECT_EQ(file.isValid(), c.valid) << testing::PrintToString(c.bytes);
        EXPECT_EQ(code_of(file) == -1, !c.valid) << testing::PrintToString(c.bytes);
    }
    const std::pair<std::string, std::string> in_text_mode[] = {
        {"abc\0def"s, "abc"}, {"abc", "abc"}, {std::string(300, 'x'), std::string(256, 'x')}};
    for (const auto& [stored, expected] : in_text_mode) {
        std::string value;
        open(stored, "rt") >> value;
        EXPECT_EQ(value, expected);
    }
}

TEST_F(XrFileTest, TextsWithoutMemoryLeaveThePositionBehindTheirLength) {
    XrFile file = open("301\0"s + std::string(300, 'x') + '\0');
    std::string value = "old";
    const ImportPatch patch("_ZnayRKSt9nothrow_t", util_test::fails<0>);
    file >> value;
    EXPECT_EQ(code_of(file), -1);
    EXPECT_FALSE(file.isValid());
    EXPECT_EQ(file.Tell(), 4);
    EXPECT_EQ(value, "old");
}

}  // namespace
