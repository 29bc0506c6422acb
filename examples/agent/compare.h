// agent compare [--json | --csv] OLD NEW
#ifndef AGENT_COMPARE_H
#define AGENT_COMPARE_H

#include "agent.h"

// Shows what was added, removed and changed between the inventory files OLD and NEW. Returns
// all_well when there is nothing to show, else differences, like the tool diff.
extern const Verb compare_verb;

#endif
