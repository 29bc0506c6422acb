#include <gtest/gtest.h>

#include "util/text/byte_string.h"

TEST(VersionOrderTest, ComparesComponentsAsNumbers) {
    const struct {
        String a, b;
        int order;
    } cases[] = {{"7.1", "7.0.9", 1},   {"7.0.9", "7.1", -1}, {"10.0", "9.9", 1},
                 {"1.0.0", "1", 0},     {"1.0.1", "1", 1},    {"6.2.SP3", "V6.2.3-beta", 0},
                 {"beta", "", 0},       {"", "1", -1},        {"...", "", 0},
                 {".1..2.", "1.2", 0},  {"-3", "3", 0},       {"2147483648", "1", -1},
                 {"4294967297", "1", 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(c.a.isGreaterThanVersion(c.b), c.order > 0) << c.a << " and " << c.b;
        EXPECT_EQ(c.a.isEqualToVersion(c.b), c.order == 0) << c.a << " and " << c.b;
        EXPECT_EQ(c.a.isLessThanVersion(c.b), c.order < 0) << c.a << " and " << c.b;
    }
}
