#include "util/files/xr_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <sys/utime.h>

#include <algorithm>
#include <cerrno>
#include <new>

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

// Stands for _read and _write: returns the results of a script.
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
    for (const DWORD code : {ERROR_TOO_MANY_OPEN_FILES, ERROR_ACCESS_DENIED}) {
        opens.clear();
        open_code = code;
        XrFile file;
        EXPECT_EQ(file.Open("any", "r"), static_cast<int>(code));
        EXPECT_EQ(code_of(file), static_cast<int>(code));
        EXPECT_EQ(opens.size(), code == ERROR_TOO_MANY_OPEN_FILES ? 7u : 1u);
    }
}

TEST_F(XrFileTest, NamesAndNullArguments) {
    for (const char* path : {"C:\\dir/sub\\name", "a\\b/name", "name"})
        EXPECT_EQ(XrFile(path, "r").getName(), "name") << path;
    EXPECT_EQ(XrFile("dir/", "r").getName(), "");
    EXPECT_EQ(code_of(XrFile(m_path.c_str(), "r")), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(code_of(XrFile(nullptr, "r")), -1);
    EXPECT_FALSE(XrFile().Error());
    XrFile reading = open("x"), writing = open("x", "w"), lines = open("x");
    EXPECT_FALSE(reading.Read(nullptr, 1));
    EXPECT_FALSE(writing.Write(nullptr, 1));
    EXPECT_FALSE(lines.Readln(nullptr, 1));
    for (const XrFile* file : {&reading, &writing, &lines}) {
        EXPECT_EQ(code_of(*file), -1);
        EXPECT_TRUE(file->isValid());
    }
}

TEST_F(XrFileTest, FailedCloseIsRecordedAndCloses) {
    XrFile file = open("text"), twin;
    twin = file;  // closes at last what stays open below
    EXPECT_EQ(twin.getName(), "f");
    const ImportPatch patch("_close", util_test::fails<-1, 1234>);
    EXPECT_FALSE(file.Close());
    EXPECT_TRUE(file.Error());
    EXPECT_EQ(code_of(file), 1234);
    EXPECT_FALSE(file.isValid());
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

int interruptions;
int interrupted_read(int fd, void* buffer, unsigned count) {
    if (interruptions-- <= 0) return _read(fd, buffer, count);
    errno = EINTR;
    return -1;
}

TEST_F(XrFileTest, ChunksReadAheadFollowTheRetryRule) {
    const ImportPatch patch("_read", interrupted_read);
    const struct { int interruptions, value, code; } cases[] = {{5, 42, 0}, {6, 99, EINTR}};
    for (const auto& c : cases) {
        XrFile file = open("42\0rest"s);
        interruptions = c.interruptions;
        int number = 99;
        file >> number;
        EXPECT_EQ(number, c.value);
        EXPECT_EQ(code_of(file), c.code);
    }
    XrFile file = open("line\n");
    interruptions = 1;
    SetLastError(77);
    EXPECT_FALSE(file.Readln(std::string(9, ' ').data(), 9)) << "lines have no such rule";
    EXPECT_EQ(code_of(file), 77);
    EXPECT_EQ(interruptions, 0) << "and no second read";
}

TEST_F(XrFileTest, DoesNotReadAheadOnPipesAndInTextMode) {
    const char* pipe_name = "\\\\.\\pipe\\util-xr-file-test";
    const HANDLE pipe =
        CreateNamedPipeA(pipe_name, PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 100, 100, 0, nullptr);
    XrFile piped(pipe_name, "r+");
    DWORD written;
    ASSERT_TRUE(WriteFile(pipe, "first\n2\0x\099999\0cut", 19, &written, nullptr));
    CloseHandle(pipe);
    char line[16] = {};
    EXPECT_TRUE(piped.Readln(line, sizeof line));
    EXPECT_STREQ(line, "first\n");
    std::string text, cut;
    piped >> text >> cut;
    EXPECT_EQ(text, "x");
    EXPECT_EQ(cut, "cut") << "a length that cannot be compared with the pipe's end";

    XrFile translated = open("a\r\nb\r\n", "rt");
    EXPECT_TRUE(translated.Readln(line, sizeof line));
    EXPECT_EQ(translated.Tell(), 3);
}

TEST_F(XrFileTest, SizeTimeAndExistence) {
    XrFile file = open("0123456789");
    __utimbuf64 times = {2000000000, 1000000000};  // accessed, modified
    _utime64(m_path.c_str(), &times);
    EXPECT_EQ(file.Size(), 10);
    EXPECT_EQ(file.LastModified(), 1000000000);
    EXPECT_TRUE(file.Exists());
    EXPECT_TRUE(XrFile::Exists(m_path, 6));
    EXPECT_FALSE(XrFile::Exists(m_scratch / "missing", 0));
    SetFileAttributesA(m_path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(XrFile::Exists(m_path, 2));
    EXPECT_EQ(XrFile().LastModified(), 0);

    const int standard_input = _dup(0);
    _close(0);
    XrFile as_input(m_path.c_str(), "r");
    EXPECT_EQ(as_input.Size(), 0) << "descriptor 0 counts as none";
    EXPECT_EQ(as_input.LastModified(), 0);
    as_input.Close();
    _dup2(standard_input, 0);
    _close(standard_input);
}

TEST_F(XrFileTest, LinesBehind2GB) {
    const int raw = _open(m_path.c_str(), _O_WRONLY | _O_CREAT | _O_BINARY, 0600);
    _lseek(raw, INT_MAX, SEEK_SET);
    ASSERT_EQ(_write(raw, "first\nsecond\n", 13), 13);
    _close(raw);
    XrFile file(m_path.c_str(), "r");
    ASSERT_TRUE(file.Seek(INT_MAX));
    char line[16] = {};
    EXPECT_TRUE(file.Readln(line, sizeof line));
    EXPECT_TRUE(file.Readln(line, sizeof line));
    EXPECT_STREQ(line, "second\n");
}

TEST_F(XrFileTest, WritesRecordsByteForByte) {
    const std::string with_nul("a\0b", 3);
    const std::string long_text(100000, 'x');
    XrFile file = open("", "w");
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
    XrFile plain = open("", "wt");
    plain << 42 << "ab" << with_nul;
    EXPECT_FALSE(plain.Error());
    EXPECT_EQ(bytes(), "42aba\0b"s);
}

unsigned longest_on_stack;
int measuring_write(int descriptor, const void* at, unsigned count) {
    MEMORY_BASIC_INFORMATION block, stack;
    VirtualQuery(at, &block, sizeof block);
    VirtualQuery(&stack, &stack, sizeof stack);
    if (block.AllocationBase == stack.AllocationBase)
        longest_on_stack = std::max(longest_on_stack, count);
    return _write(descriptor, at, count);
}

// A step over the end of the buffer would not show in the file.
TEST_F(XrFileTest, ShortRecordsFitTheirBuffer) {
    const ImportPatch patch("_write", measuring_write);
    XrFile file = open("", "w");
    for (size_t size = 245; size < 260; ++size)
        file << std::string(size, 'x');
    EXPECT_EQ(longest_on_stack, 256u) << "the size of the buffer there";
}

size_t largest_block;
void* recording_new(size_t size, const std::nothrow_t&) {
    largest_block = std::max(largest_block, size);
    return size == 301 ? nullptr : operator new[](size, std::nothrow);
}

TEST_F(XrFileTest, TextsWithoutMemoryAndTextsThatPromiseTooMuch) {
    const ImportPatch patch("_ZnayRKSt9nothrow_t", recording_new);
    XrFile file = open("301\0"s + std::string(300, 'x') + '\0');
    std::string value = "old";
    file >> value;
    EXPECT_EQ(code_of(file), -1);
    EXPECT_FALSE(file.isValid());
    EXPECT_EQ(file.Tell(), 4) << "behind the length";
    EXPECT_EQ(value, "old");

    open("2147483647\0cut"s) >> value;
    EXPECT_EQ(value, "cut");
    EXPECT_EQ(largest_block, 301u) << "never what the length promises";
}

}  // namespace
