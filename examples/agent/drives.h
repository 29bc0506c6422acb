// The machine's drives, in words.
#ifndef AGENT_DRIVES_H
#define AGENT_DRIVES_H

#include <vector>

#include "util/util.h"

struct Drive {
    String root;         // "C:\"
    String type;         // "fixed"
    String file_system;  // "NTFS"
    String free;         // "1.5 GB"; "?" when the system cannot tell
};

// The drives whose volume answers, in the order of the system.
std::vector<Drive> drives();

#endif
