// The runtime's local-time conversion under one name on both platforms.
#ifndef UTIL_INTERNAL_CALENDAR_H
#define UTIL_INTERNAL_CALENDAR_H

#include <cstdint>
#include <ctime>

namespace util {

// Seconds since 1970 to local broken-down time: 0, or 22 (EINVAL) for a time that the runtime
// refuses, such as one before 1970.
inline int local_time(std::int64_t t, std::tm* out) {
#ifdef _WIN32
    return _localtime64_s(out, &t);
#else
    constexpr int invalid = 22;
    const std::time_t time = t;
    return time >= 0 && localtime_r(&time, out) ? 0 : invalid;
#endif
}

}  // namespace util

#endif
