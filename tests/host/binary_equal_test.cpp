#include "util/host/binary_equal.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

TEST(BinaryEqualTest, ReadsUpToTheFirstDifferenceOnly) {
    const char one = 'a', other = 'b';  // the sanitizers see every byte beyond
    EXPECT_FALSE(UTIL_IsBinaryEqual(&one, &other, INT_MAX));
    EXPECT_FALSE(UTIL_IsBinaryEqual("a\0b", "a\0c", 3));
    EXPECT_TRUE(UTIL_IsBinaryEqual("a\0b", "a\0c", 2));
    EXPECT_TRUE(UTIL_IsBinaryEqual(nullptr, "a", 0));
    EXPECT_TRUE(UTIL_IsBinaryEqual(nullptr, "a", INT_MIN));
    EXPECT_FALSE(UTIL_IsBinaryEqual(nullptr, "a", 1));
    EXPECT_FALSE(UTIL_IsBinaryEqual("a", nullptr, 1));
}

}  // namespace
