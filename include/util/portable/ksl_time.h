/// @file
/// Converts time values and the runtime's `tm` record to and from fixed texts.
///
/// A time value is the runtime's 64-bit one: seconds since 1970-01-01 00:00:00 UTC. Any thread may
/// call these functions. They keep no state.
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

UTIL_EXTERN_C_BEGIN

/// Reads the 24 characters of the runtime's `ctime` from `text` into `*out`. Columns count from 0.
/// For example, in "Wed Mar 03 10:11:12 2010":
///
///     column  characters                              field
///     0       day name, one of "Sun" to "Sat"         tm_wday
///     4       month name, one of "Jan" to "Dec"       tm_mon
///     8       number                                  tm_mday
///     11      three numbers with ":" between them     tm_hour, tm_min, tm_sec
///     20      calendar year                           tm_year
///
/// Names match in exactly this case. Numbers are read as by `scanf` with `"%d"` and wrap modulo
/// 2^32. Failure is not reported: a field whose text is missing or cannot be read is unchanged. So
/// fill the record beforehand. A null argument changes nothing.
///
/// After that, `tm_yday` is computed from the fields, and `tm_isdst` is set to -1 (unknown). By
/// design, `tm_yday` takes the leap year from `tm_year`, the years since 1900, and not from the
/// calendar year:
/// - 2000 (`tm_year` 100) is a common year.
/// - 1900 (0) and 2300 (400) count one day more in every month.
/// - Other leap years count it from March on.
///
/// The text above gives `tm_yday` 61. 1 March gives 60 in 2024, and 59 in 2000. If `tm_mon` is
/// below 0, no months are counted before the day. If it is above 11, all twelve are.
UTIL_API void ksl_strptime(const char* text, struct tm* out);

/// Stores the local broken-down time of `*t` in `*out`. Returns 0, or the runtime's error code: 22
/// (EINVAL) for a time before 1970 or after the year 3000, and for null arguments.
UTIL_API int ksl_localtime(const int64_t* t, struct tm* out);

/// Writes the local time of `*t` to `buf`, of `size` bytes, in the format `"%Y %m %d %H:%M:%S"`.
/// Example: `"2010 03 07 14:05:09"`.
///
/// Returns the length without the NUL, which is 19. Returns 0 if `size` is below 20 or `buf` is
/// null. Returns the error code of ksl_localtime if that fails. By design, the length and the code
/// share one number. Pass 20 bytes or more: then 19 is success and everything else is a failure.
UTIL_API int ksl_ctime(const int64_t* t, char* buf, uint64_t size);

UTIL_EXTERN_C_END

#endif
