// agent report [--json | --csv | --xml]
#ifndef AGENT_REPORT_H
#define AGENT_REPORT_H

#include "agent.h"

// Shows how this machine is configured: one line for each thing, with its value, or with the reason
// why there is none in parentheses.
//
// With --xml the line is an element that UTIL_extractTag reads. Its tag is the name of the thing
// with "_" for blanks, and with "_missing" at the end when the text is a reason.
//
// Changes nothing on the machine and never shows a password. Always returns all_well: the reader
// knows what has to be there.
extern const Verb report_verb;

#endif
