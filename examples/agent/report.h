// agent report [--xml]
#ifndef AGENT_REPORT_H
#define AGENT_REPORT_H

#include "agent.h"

// Shows how this machine is configured: one line for each thing, with its value, or in parentheses
// why there is none. With --xml each line is a fragment that UTIL_extractTag reads: the tag is the
// thing's name with "_" for blanks, followed by "_missing" when the text is a reason. Changes
// nothing on the machine and never shows a password. Always all_well: what has to be there is for
// the reader to say.
int report(const Arguments& arguments);

#endif
