// One process's share of the scenarios, each run over and over with one call of the platform's
// failing, until none is left to fail.
#ifndef UTIL_TESTS_TORTURE_SWEEP_H
#define UTIL_TESTS_TORTURE_SWEEP_H

#include <string>
#include <vector>

#include "torture/scenario.h"

namespace torture {

// What a sweeping process and the one that has started it both see. It survives the former, so that
// another can go on behind the call that ended it.
struct Progress {
    // The run that is going on: the scenario, what fails in it (-1: nothing) and how, and which
    // call of it. Where the next process begins, too.
    long scenario, target, persistent, call;
    char failing[64];  // the target's name
    volatile long hung;
    long finished;
    // Figures.
    long runs, faults, allocations;
    char called[1024];  // the exports that were called, in the order of exported()
    char failed[512];   // the failures that happened, in their table's order
};

struct Share {
    long part, parts;  // the scenarios whose number is part, modulo parts
    const char* only;  // and with this text in its name
};

// Runs until all is done and returns true; or the process ends somewhere. Every fault found is a
// line of the log.
bool sweep(Progress& progress, const Share& share, HANDLE log);

// Every scenario there is.
std::vector<Scenario> all_scenarios();

}  // namespace torture

#endif
