// The runtime's local-time conversions under one name each. The native build returns the same as
// the Windows runtime, except in the last hours of the year 3000. So the tests run on both.
#ifndef UTIL_INTERNAL_CALENDAR_H
#define UTIL_INTERNAL_CALENDAR_H

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <initializer_list>

namespace util {

// Returns the seconds since 1970-01-01 00:00:00 UTC.
inline std::int64_t current_time() {
#ifdef _WIN32
    return _time64(nullptr);
#else
    return std::time(nullptr);
#endif
}

// Stores the local time of `t` in `fields` and returns 0. Returns an errno code if `fields` is null
// or the time is out of range. In the latter case, all fields are -1.
inline int local_time(std::int64_t t, std::tm* fields) {
    if (!fields) return EINVAL;
#ifdef _WIN32
    return _localtime64_s(fields, &t);
#else
    constexpr std::int64_t last = 32535215999;  // 3000-12-31 23:59:59 UTC
    if (t >= 0 && t <= last && localtime_r(&t, fields)) return 0;
    *fields = {};
    for (int* field :
         {&fields->tm_sec, &fields->tm_min, &fields->tm_hour, &fields->tm_mday, &fields->tm_mon,
          &fields->tm_year, &fields->tm_wday, &fields->tm_yday, &fields->tm_isdst}) {
        *field = -1;
    }
    return EINVAL;
#endif
}

// Returns the time of the local `fields` and normalises them. Returns -1, with `fields` unchanged,
// if they form no time. Local times before 1970-01-01 00:00:00 UTC form none.
inline std::int64_t make_time(std::tm* fields) {
    std::tm normal = *fields;  // the runtime may stop half way
#ifdef _WIN32
    const std::int64_t t = _mktime64(&normal);
#else
    constexpr int last_year = 3000 - 1900;
    std::int64_t t = std::mktime(&normal);
    if (t < 0 || normal.tm_year > last_year) t = -1;
#endif
    if (t != -1) *fields = normal;
    return t;
}

}  // namespace util

#endif
