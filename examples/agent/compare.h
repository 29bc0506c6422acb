// agent compare OLD NEW
#ifndef AGENT_COMPARE_H
#define AGENT_COMPARE_H

#include "agent.h"

// Shows what was added, removed and changed from the inventory file OLD to NEW. As with diff:
// all_well when there is nothing to show, else differences.
int compare(const Arguments& arguments);

#endif
