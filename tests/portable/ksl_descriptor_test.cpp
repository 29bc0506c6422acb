#include "util/portable/ksl_descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "support/import_patch.h"
#include "support/scratch_directory.h"

namespace {

TEST(DescriptorTest, WritesSeeksReadsAndFailsAsTheRuntime) {
    const util_test::ScratchDirectory scratch;
    const int fd = _open((scratch / "data").c_str(), O_CREAT | O_RDWR | O_BINARY, 0600);
    ASSERT_NE(fd, -1);
    EXPECT_EQ(ksl_write(fd, "a\n\0b", 4), 4);
    EXPECT_EQ(ksl_lseek(fd, 1, SEEK_SET), 1);
    char text[8] = "#######";
    EXPECT_EQ(ksl_read(fd, text, 8), 3) << "a short read is no failure";
    EXPECT_EQ(std::string(text, 5), std::string("\n\0b##", 5));
    EXPECT_EQ(ksl_read(fd, text, 8), 0) << "the end";

    const int second = ksl_dup(fd);
    EXPECT_EQ(ksl_lseek(second, -2, SEEK_END), 2);
    EXPECT_EQ(ksl_lseek(fd, 0, SEEK_CUR), 2) << "one position";
    EXPECT_EQ(ksl_close(fd), 0);
    EXPECT_EQ(ksl_read(second, text, 1), 1) << "the copy stays open";
    EXPECT_EQ(ksl_lseek(second, -5, SEEK_SET), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(ksl_close(second), 0);

    for (int closed : {second, -1}) {
        const auto expect_bad = [](long result, const char* name) {
            EXPECT_EQ(result, -1) << name;
            EXPECT_EQ(errno, EBADF) << name;
            errno = 77;
        };
        errno = 77;
        expect_bad(ksl_read(closed, text, 1), "read");
        expect_bad(ksl_write(closed, "x", 1), "write");
        expect_bad(ksl_lseek(closed, 0, SEEK_SET), "lseek");
        expect_bad(ksl_dup(closed), "dup");
        expect_bad(ksl_close(closed), "close");
    }
}

int last_closed;
int logging_close(int descriptor) {
    last_closed = descriptor;
    return 0;
}

TEST(DescriptorTest, StandardInputIsNeverClosed) {
    util_test::ImportPatch patch("_close", logging_close);
    last_closed = -2;
    EXPECT_EQ(ksl_close(0), 0);
    EXPECT_EQ(last_closed, -2);
    EXPECT_EQ(ksl_close(1), 0);
    EXPECT_EQ(last_closed, 1);
}

TEST(DescriptorTest, EnvironmentAndFlush) {
    EXPECT_EQ(ksl_putenv("UTIL_TEST_VALUE=a=b"), 0);
    EXPECT_STREQ(std::getenv("UTIL_TEST_VALUE"), "a=b");
    EXPECT_EQ(ksl_putenv("UTIL_TEST_VALUE="), 0);
    EXPECT_EQ(std::getenv("UTIL_TEST_VALUE"), nullptr);
    EXPECT_EQ(ksl_putenv("UTIL_TEST_VALUE"), -1);
    EXPECT_EQ(ksl_flush(-1), 0);
}

}  // namespace
