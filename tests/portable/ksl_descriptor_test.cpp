#include "util/portable/ksl_descriptor.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/import_patch.h"

namespace {

int last_closed = -2;
int logging_close(int descriptor) {
    last_closed = descriptor;
    return 0;
}

TEST(DescriptorTest, StandardInputIsNeverClosed) {
    util_test::ImportPatch patch("_close", logging_close);
    EXPECT_TRUE(ksl_close(0) == 0 && last_closed == -2);
    EXPECT_TRUE(ksl_close(1) == 0 && last_closed == 1);
}

TEST(DescriptorTest, Putenv_SetsOrRefuses) {
    EXPECT_STREQ(ksl_putenv("UTIL_TEST_VALUE=a=b") ? "" : std::getenv("UTIL_TEST_VALUE"), "a=b");
    for (const std::string& refused : {std::string("NAME"), "NAME=" + std::string(70000, 'v')})
        EXPECT_EQ(ksl_putenv(refused.c_str()), -1);
}

}  // namespace
