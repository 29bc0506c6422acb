// The wall clock within the minute.
#ifndef UTIL_HOST_TIME_OF_DAY_H
#define UTIL_HOST_TIME_OF_DAY_H

#include "util/export.h"

// A time of day without its hours and minutes.
struct UTIL_TimeOfDay {
    long seconds;       // of the current minute, 0 to 59
    long microseconds;  // whole milliseconds, 0 to 999000
};

UTIL_EXTERN_C_BEGIN

// The current UTC time. Meant as it is: the seconds are those of the minute and count from no
// epoch, so the record serves for intervals below a minute. 0, or -1 when time is null. Any thread
// may call it.
//     UTIL_TimeOfDay now;
//     UTIL_GetTimeOfDay(&now)   // 0; at 12:34:56.789, 56 and 789000
UTIL_API int UTIL_GetTimeOfDay(struct UTIL_TimeOfDay* time);

UTIL_EXTERN_C_END

#endif
