#include "util/text/date.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cstdlib>

#include "util/text/byte_string.h"

using extstl::ExtDate;
using extstl::ExtTime;
using namespace std::string_literals;

namespace {

void set_zone(const char* zone) {
#ifdef _WIN32
    _putenv(("TZ="s + zone).c_str());
    _tzset();
#else
    setenv("TZ", zone, 1);
    tzset();
#endif
}

class DateTest : public testing::TestWithParam<const char*> {
  protected:
    DateTest() { set_zone(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Zones, DateTest, testing::Values("UTC", "EST5EDT", "CET-1CEST"));

std::string fields_of(const ExtDate& date) {
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &date.fields()));
}

TEST_P(DateTest, NormalisesDatesAndSetsTheTimeOfDay) {
    const struct {
        int day, month, year;
        const char *fields, *text;
    } cases[] = {{5, 3, 7, "2007-03-05 00:00:01", "2007 03 05"},
                 {31, 2, 99, "2099-03-03 00:00:01", "2099 03 03"},
                 {31, 2, 1960, "1960-02-31 00:00:01", ""},
                 {31, 12, 1969, "1969-12-31 00:00:01", ""},
                 {31, 12, 3000, "3000-12-31 00:00:01", "3000 12 31"},
                 {1, 1, 3001, "3001-01-01 00:00:01", ""}};
    for (const auto& c : cases) {
        const ExtDate date(c.day, c.month, c.year);
        EXPECT_EQ(fields_of(date), c.fields);
        EXPECT_EQ(date.toString().str(), c.text);
        EXPECT_TRUE(date.isValid() == (*c.text != 0) && date.isValid() == (date.time() != -1));
    }
    EXPECT_FALSE(ExtDate(1, INT_MIN, 2010).isValid() || ExtDate(1, 1, INT_MAX).isValid());
}

TEST_P(DateTest, TimeKeepsItsTimeOfDayAndADateMadeFromItDoesNot) {
    const ExtTime time(ExtDate(17, 5, 2010), 14, 20, 10, "CET");
    const ExtDate& base = time;
    ExtDate date;
    date = time;
    ExtTime assigned;
    assigned = time;
    for (const ExtTime& t : {time, assigned}) {
        EXPECT_EQ(fields_of(t), "2010-05-17 14:20:10");
        EXPECT_EQ(t.time() - date.time(), 14 * 3600 + 20 * 60 + 9);
        EXPECT_EQ(t.label().str(), "CET");
    }
    EXPECT_EQ(base.toString().str(), "2010 05 17 14:20:10") << "the virtual one";
    EXPECT_EQ(fields_of(ExtDate(base)), "2010-05-17 00:00:01");
    EXPECT_EQ(fields_of(ExtTime(base, 23, 59, 61, "")), "2010-05-18 00:00:01");
    EXPECT_EQ(ExtTime(ExtDate(1, 1, 1960), 12, 30, 45, "").toString().str(), " 12:30:45");
}

TEST_P(DateTest, WritesPatternsInTheCLocale) {
#ifdef _WIN32
    ASSERT_NE(setlocale(LC_ALL, "German"), nullptr);
#endif
    const ExtTime time(ExtDate(8, 9, 2001), 21, 46, 40, "");
    const struct {
        std::string pattern, text;
    } cases[] = {
        {"%d.%m.%y %I %j %w 100%% %%a", "08.09.01 09 251 6 100% %a"},
        {"%a %A %b %B %p", "Sat Saturday Sep September PM"},
        {"%c|%x|%X", "09/08/01 21:46:40|09/08/01|21:46:40"},
        {"%#c|%#x", "Saturday, September 08, 2001 21:46:40|Saturday, September 08, 2001"},
        {std::string(123, 'x') + "%Y", std::string(123, 'x') + "2001"},
        {std::string(124, 'x') + "%Y", ""},
#ifdef _WIN32
        {"%", ""},
        {"x%Q", ""},
        {"x%#", ""},
#endif
    };
    for (const auto& c : cases)
        EXPECT_EQ(time.text(c.pattern.c_str()).str(), c.text) << c.pattern;
    std::string halves;
    for (const int hour : {0, 11, 12})
        halves += ExtTime(time, hour, 0, 0, "").text("%I %p ").str();
    EXPECT_EQ(halves, "12 AM 11 AM 12 PM ");
    EXPECT_EQ(time.text(nullptr).str(), "");
    setlocale(LC_ALL, "C");
}

TEST(DateInZoneTest, TimeOneHasNoTextAndDaylightSavingIsFoundOut) {
    set_zone("UTC");
    const ExtTime one(ExtDate(1, 1, 1970), 0, 0, 1, "");
    EXPECT_EQ(one.time(), 1);
    EXPECT_EQ(one.toString().str(), "");
    EXPECT_EQ(ExtDate(one).toString().str(), "1970 01 01");

    set_zone("CET-1CEST");
    EXPECT_EQ(ExtTime(ExtDate(17, 1, 2010), 12, 0, 0, "").time(), 1263726000);
    EXPECT_EQ(ExtTime(ExtDate(17, 7, 2010), 12, 0, 0, "").time(), 1279360800);
}

TEST_P(DateTest, ReadsTimesYearFirst) {
    const struct {
        const char *text, *time, *label;
    } cases[] = {{"2010/05/17 12:30:45", "2010 05 17 12:30:45", ""},
                 {"//10::5  17/1 2", "2010 05 17 01:02:00", ""},
                 {"17/05/2010 12:30", "2022 10 31 12:30:00", ""},
                 {"2010/05/17 12:30:45 a\tb", "2010 05 17 12:30:45", "a\tb"},
                 {"2010/05/17 12:30 -5", "2010 05 17 12:30:00", "-5"},
                 {"2010/05/17 12:30 7UTC", "2010 05 17 12:30:07", ""},
                 {"2010/05/17 12:30:45 UTC x", "2010 05 17 12:30:45", ""},
                 {"2010 05 17 12:30:45 UTC", "2010 05 17 12:30:45", ""},
                 {"2010/-2147483648/17 12:30", " 12:30:00", ""}};
    for (const auto& c : cases) {
        const ExtTime time = String(c.text).toDate();
        EXPECT_EQ(time.toString().str(), c.time) << c.text;
        EXPECT_EQ(time.label().str(), c.label) << c.text;
    }
}

TEST_P(DateTest, OtherTextsAndNoArgumentsGiveTheCurrentTime) {
    const std::time_t before = std::time(nullptr);
    for (const char* text : {"", "garbage", "2010/05/17 12"}) {
        const std::time_t read = String(text).toDate().time();
        EXPECT_TRUE(before <= read && read <= std::time(nullptr)) << text;
    }
    const ExtDate today;
    EXPECT_LE(std::abs(before - today.time()), 25 * 3600);
    EXPECT_EQ(fields_of(today).substr(11), "00:00:01");
}

}  // namespace
