// agent prepare DIR RECORD
#ifndef AGENT_PREPARE_H
#define AGENT_PREPARE_H

#include "agent.h"

// Creates DIR with all that is missing above it, appends to the file RECORD what it created, and
// shows it as the file has it. What is created before a failure is recorded and shown, too. DIR is
// recorded as a full path, so that a clean-up may run anywhere; a share needs a drive letter.
int prepare(const Arguments& arguments);

#endif
