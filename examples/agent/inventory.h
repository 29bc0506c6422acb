// agent inventory [--skip NAME]... DIR FILE
#ifndef AGENT_INVENTORY_H
#define AGENT_INVENTORY_H

#include "agent.h"

// Lists the tree DIR, hidden entries included, into the inventory FILE, reads that back, compares
// it with the disk, and prints a summary. all_well; differences when the tree changed meanwhile;
// trouble when a part of it could not be read, which the inventory then lacks.
int inventory(const Arguments& arguments);

#endif
