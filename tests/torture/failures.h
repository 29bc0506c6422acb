// How each function that util.dll imports fails, and which cannot.
#ifndef UTIL_TESTS_TORTURE_FAILURES_H
#define UTIL_TESTS_TORTURE_FAILURES_H

#include <cstdint>
#include <string>
#include <vector>

#include "util/internal/windows.h"
// after the platform's header
#include <cfgmgr32.h>

namespace torture {

enum How {
    instead,  // the call does nothing but fail
    once,     // the same, but never for good: the library tries again, as long as it takes
    working,  // the call does its work, giving something back, and reports a failure all the same
};

struct Failure {
    std::string name;
    std::int64_t result;
    DWORD last_error;  // 0: left alone
    int error_number;  // of the runtime; 0: left alone
    How how;
};

// Several of one function are several ways in which it fails.
extern const std::vector<Failure> failures;

// The runtime's allocating functions, in util.dll and in the C++ runtime alike.
bool is_allocation(const std::string& name);

// Whether a function can be called without being able to fail, or fails by allocation alone.
bool cannot_fail(const std::string& name);

}  // namespace torture

#endif
