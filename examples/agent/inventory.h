// agent inventory [--skip NAME]... [--json | --csv] DIR FILE
#ifndef AGENT_INVENTORY_H
#define AGENT_INVENTORY_H

#include "agent.h"

// Lists the tree DIR, hidden entries included, into the inventory FILE. Then reads FILE again,
// compares it with the disk, and prints a summary, or with --json or --csv the whole list. What
// could not be read comes last, on standard error. Returns all_well, differences when the tree
// changed meanwhile, or trouble when a part of the tree could not be read and the inventory lacks
// it.
extern const Verb inventory_verb;

#endif
