#include "util/portable/ksl_descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <utility>

#include "support/import_patch.h"
#include "support/scratch_directory.h"

namespace {

TEST(DescriptorTest, WritesSeeksReadsAndFailsAsTheRuntime) {
    const util_test::ScratchDirectory scratch;
    const int fd = _open((scratch / "data").c_str(), O_CREAT | O_RDWR | O_BINARY, 0600);
    ASSERT_NE(fd, -1);
    char text[8] = "#######";
    EXPECT_EQ(ksl_write(fd, "a\n\0b", 4), 4);
    EXPECT_EQ(ksl_lseek(fd, -3, SEEK_END), 1);
    EXPECT_EQ(ksl_read(fd, text, 8), 3) << "a short read is no failure";
    EXPECT_EQ(std::string(text, 5), std::string("\n\0b##", 5));
    const int second = ksl_dup(fd);
    EXPECT_EQ(ksl_close(fd), 0);
    EXPECT_EQ(ksl_lseek(second, 0, SEEK_CUR), 4) << "the copy stays open, at the same place";
    EXPECT_EQ(ksl_close(second), 0);

    const auto bad = [](long result) { return result == -1 && std::exchange(errno, 77) == EBADF; };
    EXPECT_TRUE(bad(ksl_read(second, text, 1)));
    EXPECT_TRUE(bad(ksl_write(second, "x", 1)));
    EXPECT_TRUE(bad(ksl_lseek(second, 0, SEEK_SET)));
    EXPECT_TRUE(bad(ksl_dup(second)));
    EXPECT_TRUE(bad(ksl_close(second)));
}

int last_closed = -2;
int logging_close(int descriptor) {
    last_closed = descriptor;
    return 0;
}

TEST(DescriptorTest, StandardInputIsNeverClosed) {
    util_test::ImportPatch patch("_close", logging_close);
    EXPECT_EQ(ksl_close(0), 0);
    EXPECT_EQ(last_closed, -2);
    EXPECT_EQ(ksl_close(1), 0);
    EXPECT_EQ(last_closed, 1);
}

TEST(DescriptorTest, EnvironmentAndFlush) {
    EXPECT_EQ(ksl_putenv("UTIL_TEST_VALUE=a=b"), 0);
    EXPECT_STREQ(std::getenv("UTIL_TEST_VALUE"), "a=b");
    EXPECT_EQ(ksl_putenv("UTIL_TEST_VALUE"), -1);
    EXPECT_EQ(ksl_flush(-1), 0);
}

}  // namespace
