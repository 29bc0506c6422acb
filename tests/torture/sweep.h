// Plays a scenario over and over with one call of the platform's failing, until none is left to
// fail.
#ifndef UTIL_TESTS_TORTURE_SWEEP_H
#define UTIL_TESTS_TORTURE_SWEEP_H

#include "torture/scenario.h"

namespace torture {

struct Figures {
    long runs = 0, faults = 0, allocations = 0;
};
extern Figures figures;

// From here on every call of util.dll passes a gate.
void begin_sweeps();

// The faults found, a line each. A scenario that crashes or hangs ends the process, and says so on
// the standard error.
std::string sweep(const Scenario& scenario);

}  // namespace torture

#endif
