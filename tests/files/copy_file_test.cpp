#include "util/files/copy_file.h"

#include <io.h>
#include <sys/stat.h>

#include "support/built_file.h"
#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/test.h"
#include "util/files/xr_file.h"
#include "util/portable/ksl_process.h"

using util_test::ImportPatch;
using util_test::ScratchDirectory;

namespace {

constexpr unsigned chunk = 262144;
constexpr char source_name[] = "gr\xC3\xBC\xE6\x96\x87";

std::string bytes(size_t count) {
    std::string result;
    while (result.size() < count)
        result += "\r\n\x1A" + std::to_string(result.size());  // what a text mode would change
    return result.substr(0, count);
}

class CopyFileTest : public testing::Test {
  protected:
    int copy(char keep_mode = 0) const {
        return UTIL_copy(m_source.c_str(), m_target.c_str(), keep_mode);
    }
    ScratchDirectory m_scratch;
    const std::string m_source = m_scratch / source_name;
    const std::string m_target = m_scratch / "target";
};

TEST_F(CopyFileTest, MovesChunksOf256KiB) {
    std::vector<unsigned> reads;
    const ImportPatch patch("_read", [&](int descriptor, void* buffer, unsigned count) {
        reads.push_back(count);
        return _read(descriptor, buffer, count);
    });
    copy();
    const long handles = util_test::handle_count();
    for (const size_t size : {0u, 5u, chunk, 3 * chunk + 5}) {
        m_scratch.file(source_name, bytes(size));
        m_scratch.file("target", "a longer text than the shortest case");
        reads.clear();
        EXPECT_EQ(copy(), 0) << size;
        EXPECT_TRUE(m_scratch.read("target") == bytes(size)) << size;
    }
    EXPECT_EQ(reads, (std::vector<unsigned>{chunk, chunk, chunk, 5}));
    EXPECT_EQ(util_test::handle_count(), handles);
}

TEST_F(CopyFileTest, ASourceThatChangesMeanwhile) {
    const size_t size = chunk + 100;
    for (const size_t changed : {2 * size, size - 1, size_t{chunk}, size_t{0}}) {
        m_scratch.file(source_name, bytes(size));
        // The length is asked for before the first read.
        const ImportPatch patch("_filelengthi64", [&](int) {
            std::filesystem::resize_file(std::filesystem::u8path(m_source), changed);
            return static_cast<__int64>(size);
        });
        EXPECT_EQ(copy(), changed > size ? 0 : -1) << changed;
        EXPECT_TRUE(m_scratch.read("target") == bytes(std::min(size, changed))) << changed;
    }
}

TEST_F(CopyFileTest, RefusalsAndACopyOntoItself) {
    m_scratch.file("target", "bytes");
    EXPECT_EQ(copy(), -1);
    EXPECT_EQ(m_scratch.read("target"), "") << "opened before the missing source is noticed";
    m_scratch.file(source_name, bytes(5));
    const std::string directory = m_scratch.directory("directory");
    for (const char* place : {directory.c_str(), "Q:\\x", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(UTIL_copy(m_source.c_str(), place, 0), -1);
        EXPECT_EQ(UTIL_copy(place, m_target.c_str(), 0), -1);
    }
    {
        const ImportPatch patch("_filelengthi64", [](int) { return 0x100000005; });
        EXPECT_EQ(copy(), -1) << "5 of 2^32 + 5 bytes are not the whole";
    }
    EXPECT_EQ(UTIL_copy(m_source.c_str(), m_source.c_str(), 1), 0);
    EXPECT_EQ(m_scratch.read(source_name), "") << "emptied";
}

TEST_F(CopyFileTest, NoRoomAtTheDestination) {
    m_scratch.file(source_name, bytes(10));
    for (const int error : {ENOSPC, 0}) {
        for (const int written : {-1, 0, 9}) {
            const ImportPatch patch("_write", [=] {
                errno = error;
                return written;
            });
            EXPECT_EQ(copy(), -1) << written << " " << error;
        }
    }
}

TEST_F(CopyFileTest, KeepsTheModeForExactlyOne) {
    m_scratch.file(source_name, "x");
    for (const int mode : {_S_IREAD, _S_IREAD | _S_IWRITE}) {
        _wchmod(std::filesystem::u8path(m_source).c_str(), mode);
        for (const int flag : {0, 2, -1, 1}) {
            EXPECT_EQ(copy(static_cast<char>(flag)), 0);
            EXPECT_EQ(_access(m_target.c_str(), 2) != 0, flag == 1 && mode == _S_IREAD) << flag;
            _chmod(m_target.c_str(), _S_IREAD | _S_IWRITE);
        }
    }
}

TEST_F(CopyFileTest, ChildrenInheritTheDescriptorsOfXrFileAlone) {
    m_scratch.file(source_name, "x");
    const std::string command = "\"" + util_test::built_file("child.exe") + "\" open 3";
    int during_copy = -1;
    const ImportPatch patch("_filelengthi64", [&](int descriptor) {
        during_copy = ksl_system(command.c_str());
        return _filelengthi64(descriptor);
    });
    const int before = ksl_system(command.c_str());
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(during_copy, before);
    const XrFile file(m_source.c_str(), "r");
    XrFile assigned;
    assigned = file;
    EXPECT_EQ(ksl_system(command.c_str()), before + 2);
}

}  // namespace
