#include "util/files/copy_file.h"

#include <gtest/gtest.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <functional>

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"

using util_test::ImportPatch;
using util_test::ScratchDirectory;

namespace {

constexpr unsigned chunk = 262144;

std::string bytes(size_t count) {
    std::string result = "\r\n\x1A";  // what a text mode would change
    while (result.size() < count)
        result += static_cast<char>(result.size() * 2654435761u >> 24);
    result.resize(count);
    return result;
}

std::vector<unsigned> reads;
int recording_read(int descriptor, void* buffer, unsigned count) {
    reads.push_back(count);
    return _read(descriptor, buffer, count);
}

std::function<void()> meanwhile;  // between the look at the size and the first read
__int64 changing_length(int descriptor) {
    const __int64 result = _filelengthi64(descriptor);
    meanwhile();
    return result;
}

int write_result, write_error;
int scripted_write(int, const void*, unsigned) {
    errno = write_error;
    return write_result;
}

__int64 huge(int) {
    return 0x100000005;
}

class CopyFileTest : public testing::Test {
  protected:
    int copy(char keep_mode = 0) const {
        return UTIL_copy(m_source.c_str(), m_target.c_str(), keep_mode);
    }
    ScratchDirectory m_scratch;
    const std::string m_source = m_scratch / "gr\xC3\xBC\xE6\x96\x87";
    const std::string m_target = m_scratch / "target";
};

TEST_F(CopyFileTest, MovesChunksOf256KiB) {
    const ImportPatch patch("_read", recording_read);
    const struct {
        size_t size;
        std::vector<unsigned> reads;
    } cases[] = {
        {0, {}},
        {5, {5}},
        {chunk - 1, {chunk - 1}},
        {chunk, {chunk}},
        {chunk + 1, {chunk, 1}},
        {3 * chunk + 5, {chunk, chunk, chunk, 5}},
    };
    copy();
    const long handles = util_test::handle_count();
    for (const auto& c : cases) {
        m_scratch.file("gr\xC3\xBC\xE6\x96\x87", bytes(c.size));
        m_scratch.file("target", "a longer text than the shortest case");
        reads.clear();
        EXPECT_EQ(copy(), 0) << c.size;
        EXPECT_TRUE(m_scratch.read("target") == bytes(c.size)) << c.size;
        EXPECT_EQ(reads, c.reads) << c.size;
    }
    EXPECT_EQ(util_test::handle_count(), handles);
}

TEST_F(CopyFileTest, ASourceThatChangesMeanwhile) {
    const ImportPatch patch("_filelengthi64", changing_length);
    const size_t size = chunk + 100;
    for (size_t changed : {size + 1, 2 * size, size - 1, size_t{chunk}, size_t{7}, size_t{0}}) {
        m_scratch.file("gr\xC3\xBC\xE6\x96\x87", bytes(size));
        meanwhile = [&] {
            std::filesystem::resize_file(std::filesystem::u8path(m_source), changed);
        };
        const bool grown = changed > size;
        EXPECT_EQ(copy(), grown ? 0 : -1) << changed;
        EXPECT_TRUE(m_scratch.read("target") == bytes(grown ? size : changed)) << changed;
    }
}

TEST_F(CopyFileTest, OntoItselfEmptiesTheFile) {
    m_scratch.file("target", "bytes");
    EXPECT_EQ(UTIL_copy(m_target.c_str(), m_target.c_str(), 1), 0);
    EXPECT_EQ(m_scratch.read("target"), "");
}

TEST_F(CopyFileTest, Refusals) {
    m_scratch.file("target", "bytes");
    EXPECT_EQ(copy(), -1);
    EXPECT_EQ(m_scratch.read("target"), "") << "opened before the missing source is noticed";
    m_scratch.file("gr\xC3\xBC\xE6\x96\x87", bytes(10));
    const std::string directory = m_scratch.directory("directory");
    EXPECT_EQ(UTIL_copy(directory.c_str(), m_target.c_str(), 0), -1);
    for (const char* place : {directory.c_str(), "Q:\\x", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(UTIL_copy(m_source.c_str(), place, 0), -1);
        EXPECT_EQ(UTIL_copy(place, m_target.c_str(), 0), -1);
    }
}

TEST_F(CopyFileTest, NoRoomAtTheDestination) {
    m_scratch.file("gr\xC3\xBC\xE6\x96\x87", bytes(10));
    if (_access("Z:\\dev\\full", 0) == 0) {  // a place under Wine that is always full
        EXPECT_EQ(UTIL_copy(m_source.c_str(), "Z:\\dev\\full", 0), -1);
    }
    const ImportPatch patch("_write", scripted_write);
    for (const auto& [result, error] : {std::pair{-1, ENOSPC}, {9, ENOSPC}, {9, 0}, {0, 0}}) {
        write_result = result;
        write_error = error;
        EXPECT_EQ(copy(), -1) << result << " " << error;
    }
}

TEST_F(CopyFileTest, SizesBeyond32BitsAreNotCutOff) {
    m_scratch.file("gr\xC3\xBC\xE6\x96\x87", "12345");
    const ImportPatch patch("_filelengthi64", huge);
    EXPECT_EQ(copy(), -1) << "5 of 2^32 + 5 bytes are not the whole";
}

TEST_F(CopyFileTest, KeepsTheModeForExactlyOne) {
    m_scratch.file("gr\xC3\xBC\xE6\x96\x87", "x");
    _wchmod(std::filesystem::u8path(m_source).c_str(), _S_IREAD);
    for (int flag : {0, 2, -1, 127, 1}) {
        EXPECT_EQ(copy(static_cast<char>(flag)), 0);
        EXPECT_EQ(_access(m_target.c_str(), 2) != 0, flag == 1) << flag;
    }
}

}  // namespace
