// The record that a preparation leaves: the directories it had to create.
#ifndef AGENT_CREATION_RECORD_H
#define AGENT_CREATION_RECORD_H

#include <vector>

#include "util/util.h"

// Returns the directories in the order of the record, each a full path with its closing backslash.
// Raises Trouble when the file cannot be read whole, breaks off, or names anything else. What it
// names will be removed, so nothing in it is guessed.
std::vector<String> read_creation_record(const String& path);

#endif
