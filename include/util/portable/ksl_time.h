// Time values and the runtime's tm record to and from fixed texts.
#ifndef UTIL_PORTABLE_KSL_TIME_H
#define UTIL_PORTABLE_KSL_TIME_H

#ifdef __cplusplus
#include <cstdint>
#include <ctime>
#else
#include <stdint.h>
#include <time.h>
#endif

#include "util/export.h"

// A time value is the runtime's 64-bit one: seconds since 1970, UTC. All three may be called from
// any thread and keep nothing.
UTIL_EXTERN_C_BEGIN

// Reads ctime's 24 characters, "Wed Mar 03 10:11:12 2010", into the record; columns count from 0:
//
//     0   day name, one of "Sun" to "Sat"        tm_wday
//     4   month name, one of "Jan" to "Dec"      tm_mon
//     8   number                                 tm_mday
//     11  numbers with ":" between               tm_hour, tm_min, tm_sec
//     20  calendar year                          tm_year
//
// Names are read in exactly that case, numbers as scanf's "%d" does (wrapping modulo 2^32). Nothing
// is reported: what is not there or cannot be read leaves its field as it was, so fill the record
// beforehand. Then tm_yday is computed from the fields, and tm_isdst is -1 (unknown). A null
// argument changes nothing.
//
// tm_yday takes the leap year from tm_year, the years since 1900, not from the calendar year; this
// is meant. 2000 (100) is a common year; 1900 (0) and 2300 (400) count one more day in every
// month, other leap years from March on. The text above gives tm_yday 61; 1 March is 60 in 2024,
// and 59 in 2000. A tm_mon outside the year counts the months that lie before it: none or all.
UTIL_API void ksl_strptime(const char* text, struct tm* out);

// Local broken-down time of *t. 0, or the runtime's error code: 22 (EINVAL) for times before 1970
// or beyond the year 3000 and for null arguments.
UTIL_API int ksl_localtime(const int64_t* t, struct tm* out);

// Local time of *t as "%Y %m %d %H:%M:%S", such as "2010 03 07 14:05:09", into a buffer of size
// bytes. The length without the NUL, 19, or 0 when size is below 20 or buf is null; or the error
// code of ksl_localtime. Code and length share the one number and this is meant: give 20 bytes or
// more, and 19 is success.
UTIL_API int ksl_ctime(const int64_t* t, char* buf, uint64_t size);

UTIL_EXTERN_C_END

#endif
