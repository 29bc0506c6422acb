// The inventory of a tree, and the file that keeps it.
#ifndef AGENT_INVENTORY_FILE_H
#define AGENT_INVENTORY_FILE_H

#include <cstdint>
#include <vector>

#include "util/util.h"

struct Entry {
    String path;                // relative to the tree's root, separated by backslashes
    int mode = 0;               // as in the runtime's status record; 0 when it could not be had
    std::uint64_t size = 0;     // bytes; 0 for a directory
    std::int64_t modified = 0;  // seconds since 1970 UTC

    bool is_directory() const { return (mode & 0xF000) == 0x4000; }
};

// Whether the two, of the same path, agree in all but the time of a directory: that follows from
// what is in it, which has entries of its own.
bool is_same(const Entry& a, const Entry& b);

struct Inventory {
    String root;             // as the user gave it
    std::int64_t taken = 0;  // seconds since 1970 UTC
    std::vector<Entry> entries;
};

// Both end in Trouble when they fail. What is read is what was written: a file that breaks off,
// goes on behind its end, or is damaged in between is refused.
void write_inventory(const String& path, const Inventory& inventory);
Inventory read_inventory(const String& path);

#endif
