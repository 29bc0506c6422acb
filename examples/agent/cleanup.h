// agent cleanup [--dry-run] RECORD
#ifndef AGENT_CLEANUP_H
#define AGENT_CLEANUP_H

#include "agent.h"

// Removes the directories that the file RECORD names, deepest first, and nothing else. Then removes
// RECORD itself if all of them are gone. With --dry-run only shows what it would do. Returns
// differences when a directory stays because it is not empty, trouble when one stays for any other
// reason.
extern const Verb cleanup_verb;

#endif
