#include "util/host/binary_equal.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace {

TEST(BinaryEqualTest, ReadsUpToTheFirstDifferenceOnly) {
    const std::vector<char> one = {'a'}, other = {'b'};  // the sanitizers see every byte beyond
    EXPECT_FALSE(UTIL_IsBinaryEqual(one.data(), other.data(), INT_MAX));
    EXPECT_TRUE(UTIL_IsBinaryEqual("a\0b\xFF", "a\0b\xFF", 4));
    EXPECT_FALSE(UTIL_IsBinaryEqual("a\0b", "a\0c", 3));
    EXPECT_TRUE(UTIL_IsBinaryEqual("a\0b", "a\0c", 2));
    EXPECT_TRUE(UTIL_IsBinaryEqual(nullptr, "a", 0));
    EXPECT_TRUE(UTIL_IsBinaryEqual(nullptr, "a", INT_MIN));
    EXPECT_FALSE(UTIL_IsBinaryEqual(nullptr, "a", 1));
}

}  // namespace
