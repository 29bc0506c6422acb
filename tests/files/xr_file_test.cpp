#include "util/files/xr_file.h"

#include <io.h>

#include <new>

#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/test.h"

using namespace std::string_literals;
using util_test::ImportPatch;
using util_test::ScratchDirectory;

TEST(XrFileTest, Pipe_IsNotReadAhead) {
    const char* const name = "\\\\.\\pipe\\util-xr-file-test";
    const HANDLE pipe =
        CreateNamedPipeA(name, PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 100, 100, 0, nullptr);
    XrFile file(name, "r+");
    DWORD written;
    ASSERT_TRUE(WriteFile(pipe, "first\n2\0x\099999\0cut", 19, &written, nullptr));
    CloseHandle(pipe);
    char line[16] = {};
    EXPECT_TRUE(file.Readln(line, sizeof line));
    EXPECT_STREQ(line, "first\n");
    std::string text, cut;
    file >> text >> cut;
    EXPECT_EQ(text, "x");
    EXPECT_EQ(cut, "cut") << "a length that cannot be compared with the pipe's end";
}

// A step over the end of the buffer would not show in the file.
TEST(XrFileTest, ShortRecord_FillsItsBuffer) {
    unsigned longest_on_stack = 0;
    const ImportPatch patch("_write", [&](int descriptor, const void* at, unsigned count) {
        MEMORY_BASIC_INFORMATION block, stack;
        VirtualQuery(at, &block, sizeof block);
        VirtualQuery(&stack, &stack, sizeof stack);
        if (block.AllocationBase == stack.AllocationBase)
            longest_on_stack = std::max(longest_on_stack, count);
        return _write(descriptor, at, count);
    });
    const ScratchDirectory scratch;
    XrFile file((scratch / "f").c_str(), "w");
    for (std::size_t size = 245; size < 260; ++size)
        file << std::string(size, 'x');
    EXPECT_EQ(longest_on_stack, 256u) << "the size of the buffer";
}

TEST(XrFileTest, DamagedLength_AllocatesOnlyWhatTheFileContains) {
    std::size_t largest = 0;
    const ImportPatch patch("_ZnayRKSt9nothrow_t", [&](std::size_t size, const std::nothrow_t&) {
        largest = std::max(largest, size);
        return operator new[](size, std::nothrow);
    });
    const ScratchDirectory scratch;
    XrFile file(scratch.file("f", "2147483647\0cut"s).c_str(), "r");
    std::string text;
    file >> text;
    EXPECT_EQ(text, "cut");
    EXPECT_EQ(largest, 3u);
}
