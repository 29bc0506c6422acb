// The record that a preparation leaves: the directories it had to create.
#ifndef AGENT_CREATION_RECORD_H
#define AGENT_CREATION_RECORD_H

#include <vector>

#include "util/util.h"

// The directories in the order in which they were recorded, each a full path with its closing
// backslash. Ends in Trouble when the file cannot be read whole, breaks off, or names anything
// else: what it says is to be removed, so nothing in it is guessed.
std::vector<String> read_creation_record(const String& path);

#endif
