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
    memory_runs_out,  // at this call, as at any other that allocates
    never,            // it cannot fail, or fails by allocation alone
};

struct Failure {
    std::string name;  // "_Z..." is every function that begins with "_Z"
    std::int64_t result;
    DWORD last_error;  // 0: left alone
    int error_number;  // of the runtime; 0: left alone
    How how;
    mutable long times = 0;  // it has happened
};

// A function has one row for each way in which it fails. The first row is the failure of an
// allocation.
extern const std::vector<Failure> failures;

// All of them for a function. None if nobody has said how it fails.
std::vector<const Failure*> failures_of(const char* function);

}  // namespace torture

#endif
