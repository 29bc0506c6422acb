#ifndef UTIL_TESTS_SUPPORT_TIME_ZONE_H
#define UTIL_TESTS_SUPPORT_TIME_ZONE_H

#include <ctime>

#include "support/test.h"

namespace util_test {

inline void set_zone(const std::string& zone) {
#ifdef _WIN32
    _putenv(("TZ=" + zone).c_str());
    _tzset();
#else
    setenv("TZ", zone.c_str(), 1);
    tzset();
#endif
}

}  // namespace util_test

#endif
