#include "util/portable/ksl_time.h"
#include "support/test.h"

#include <ctime>

TEST(KslCtimeTest, PrintedLocalTime_ReadsBack) {
    const std::int64_t t = 5000000000;
    char text[20];
    EXPECT_EQ(ksl_ctime(&t, text, 19), 0);
    ASSERT_EQ(ksl_ctime(&t, text, sizeof text), 19);
    std::tm read = {}, converted = {};
    ASSERT_EQ(std::sscanf(text, "%4d %2d %2d %2d:%2d:%2d", &read.tm_year, &read.tm_mon,
                          &read.tm_mday, &read.tm_hour, &read.tm_min, &read.tm_sec),
              6);
    read.tm_year -= 1900;
    read.tm_mon -= 1;
    read.tm_isdst = -1;
    EXPECT_EQ(std::mktime(&read), t) << text;
    ASSERT_EQ(ksl_localtime(&t, &converted), 0);
    EXPECT_EQ(converted.tm_wday, read.tm_wday);
    EXPECT_EQ(converted.tm_yday, read.tm_yday);
    EXPECT_EQ(std::mktime(&converted), t);
}
