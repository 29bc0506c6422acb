// The inventory of a tree, and the file that keeps it.
#ifndef AGENT_INVENTORY_FILE_H
#define AGENT_INVENTORY_FILE_H

#include <cstdint>
#include <vector>

#include "formats.h"
#include "util/util.h"

struct Entry {
    String path;                // relative to the tree's root, separated by backslashes
    int mode = 0;               // as in the runtime's status record
    std::uint64_t size = 0;     // bytes; 0 for a directory
    std::int64_t modified = 0;  // seconds since 1970 UTC

    bool is_directory() const { return (mode & 0xF000) == 0x4000; }
};

// Whether two entries of the same path agree. The time of a directory is ignored: it follows from
// what is in the directory, which has entries of its own.
bool is_same(const Entry& a, const Entry& b);

// Type, size and time as members of a JSON object, and as three CSV fields. A directory has no
// size.
JsonMembers json_status(const Entry& entry);
std::vector<String> csv_status(const Entry& entry);

struct Inventory {
    String root;             // as the user gave it
    std::int64_t taken = 0;  // seconds since 1970 UTC
    std::vector<Entry> entries;
};

// Both raise Trouble when they fail. A file that breaks off, goes on after its end, or is damaged
// in between is refused.
void write_inventory(const String& path, const Inventory& inventory);
Inventory read_inventory(const String& path);

#endif
