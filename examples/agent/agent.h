// What the verbs of the sample agent share with its main program.
#ifndef AGENT_AGENT_H
#define AGENT_AGENT_H

#include <stdexcept>
#include <vector>

#include "util/util.h"

// The words behind the verb, in UTF-8.
using Arguments = std::vector<String>;

// What a verb returns to the shell.
enum ExitCode { all_well = 0, differences = 1, trouble = 2 };

// Ends the verb with a message for the user.
struct Trouble : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Ends the verb with a message and a reminder of how it is called.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

#endif
