// What a verb of the sample agent is, and how it ends.
#ifndef AGENT_AGENT_H
#define AGENT_AGENT_H

#include <stdexcept>
#include <vector>

#include "util/util.h"

// The words after the verb, in UTF-8.
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

// Ends the verb because the user asked for its help.
struct HelpWanted {};

struct Verb {
    const char* name;
    const char* words;    // for the usage line: "OLD NEW"
    const char* purpose;  // one line
    const char* help;     // the options and the exit status, in lines
    int (*run)(const Arguments&);
};

#endif
