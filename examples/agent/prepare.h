// agent prepare DIR RECORD
#ifndef AGENT_PREPARE_H
#define AGENT_PREPARE_H

#include "agent.h"

// Creates DIR and all missing directories above it. Appends what it created to the file RECORD, and
// prints that part of the file. What was created before a failure is recorded and printed as well.
// RECORD holds full paths, so a clean-up may run anywhere. A share needs a drive letter first.
extern const Verb prepare_verb;

#endif
