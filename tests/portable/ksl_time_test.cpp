#include "util/portable/ksl_time.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <string>

namespace {

// day of week, month, day, hour, minute, second, year, day of year, daylight flag
std::string shown(const std::tm& t) {
    char text[128];
    std::snprintf(text, sizeof text, "%d %d %d %d:%d:%d %d %d %d", t.tm_wday, t.tm_mon, t.tm_mday,
                  t.tm_hour, t.tm_min, t.tm_sec, t.tm_year, t.tm_yday, t.tm_isdst);
    return text;
}

// A record whose every field tells whether it was written.
std::tm untouched() {
    std::tm t = {};
    t.tm_wday = 91, t.tm_mon = 5, t.tm_mday = 93, t.tm_hour = 94, t.tm_min = 95, t.tm_sec = 96;
    t.tm_year = 97, t.tm_yday = 98, t.tm_isdst = 99;
    return t;
}

std::string parsed(const char* text) {
    std::tm t = untouched();
    ksl_strptime(text, &t);
    return shown(t);
}

TEST(KslStrptimeTest, ReadsFixedColumnsAndLeavesTheRest) {
    const struct {
        const char *text, *fields;
    } cases[] = {
        {"Wed Mar 03 10:11:12 2010", "3 2 3 10:11:12 110 61 -1"},
        {"wed MAR 03 10:11:12 2010", "91 5 3 10:11:12 110 153 -1"},
        {"Sun Jan 01 10:1x:12 2010", "0 0 1 10:1:96 110 0 -1"},
        {"Sun Jan 01 10:: 2 year", "0 0 1 10:95:96 97 0 -1"},
        {"Sun Jan 01 1: 2:+3  -100", "0 0 1 1:2:3 -2000 1 -1"},
        {"Sun Jan xx xx:11:12 ----", "0 0 93 94:95:96 97 92 -1"},
        {"Sun Jan    10:11:12 2010", "0 0 10 10:11:12 110 9 -1"},
        {"Sun Ja", "0 5 93 94:95:96 97 243 -1"},
        {"--- Dec 2147483647", "91 11 2147483647 7483647:95:96 97 -2147483316 -1"},
        {"--- --- -- --:--:-- -2147483648", "91 5 93 94:95:96 2147481748 244 -1"},
        {nullptr, "91 5 93 94:95:96 97 98 99"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parsed(c.text), c.fields) << c.fields;
    ksl_strptime("Sun Jan 01 10:11:12 2010", nullptr);
}

TEST(KslStrptimeTest, TakesTheLeapYearFromTheYearsSince1900) {
    const struct {
        const char* text;
        int day_of_year;
    } cases[] = {{"Fri Mar 01 00:00:00 2024", 60},  {"Thu Feb 29 00:00:00 2024", 59},
                 {"Wed Mar 01 00:00:00 2000", 59},  {"Mon Jan 15 00:00:00 1900", 15},
                 {"Mon Jan 15 00:00:00 2300", 15},  {"Fri Mar 01 00:00:00 2100", 59},
                 {"Fri Dec 31 00:00:00 1896", 365}, {"Thu Dec 31 00:00:00 2009", 364}};
    for (const auto& c : cases) {
        std::tm t = untouched();
        ksl_strptime(c.text, &t);
        EXPECT_EQ(t.tm_yday, c.day_of_year) << c.text;
    }
}

TEST(KslStrptimeTest, SurvivesAnyMonth) {
    const int cases[][2] = {{INT_MIN, 0}, {-1, 0}, {12, 365}, {INT_MAX, 365}};
    for (const auto& [month, days_before] : cases) {
        std::tm t = untouched();
        t.tm_mon = month;
        ksl_strptime("Sun --- 01", &t);
        EXPECT_EQ(t.tm_yday, days_before) << month;
    }
}

TEST(KslCtimeTest, PrintsTheLocalTimeThatReadsBack) {
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
    EXPECT_EQ(shown(converted), shown(read));
}

TEST(KslCtimeTest, PassesOnTheErrorCode) {
    const std::int64_t before_1970 = -1, good = 0;
    std::tm t;
    char text[32];
    EXPECT_EQ(ksl_localtime(&before_1970, &t), 22);
    EXPECT_EQ(ksl_localtime(nullptr, &t), 22);
    EXPECT_EQ(ksl_localtime(&good, nullptr), 22);
    EXPECT_EQ(ksl_ctime(&before_1970, text, sizeof text), 22);
    EXPECT_EQ(ksl_ctime(nullptr, text, sizeof text), 22);
    EXPECT_EQ(ksl_ctime(&good, nullptr, 32), 0);
}

}  // namespace
