// What `agent --version` prints.
#ifndef AGENT_VERSIONS_H
#define AGENT_VERSIONS_H

#include "util/util.h"

// Two lines: the version that this program was built with, and that of the util.dll it runs with.
String versions();

#endif
