#include "util/host/time_of_day.h"

#include "util/internal/windows.h"

static_assert(sizeof(UTIL_TimeOfDay) == 8, "two numbers of 32 bits");

int UTIL_GetTimeOfDay(UTIL_TimeOfDay* time) {
    if (!time) return -1;
    SYSTEMTIME now;
    GetSystemTime(&now);
    time->seconds = now.wSecond;
    time->microseconds = now.wMilliseconds * 1000;
    return 0;
}
