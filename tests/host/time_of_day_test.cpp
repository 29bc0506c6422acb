#include "util/host/time_of_day.h"

#include <gtest/gtest.h>

#include "support/import_patch.h"

namespace {

TEST(TimeOfDayTest, SecondsOfTheMinute) {
    const util_test::ImportPatch patch(
        "GetSystemTime", +[](SYSTEMTIME* time) { *time = {2011, 5, 2, 17, 12, 34, 56, 789}; });
    UTIL_TimeOfDay now;
    EXPECT_EQ(UTIL_GetTimeOfDay(&now), 0);
    EXPECT_EQ(now.seconds, 56);
    EXPECT_EQ(now.microseconds, 789000);
    EXPECT_EQ(UTIL_GetTimeOfDay(nullptr), -1);
}

}  // namespace
