// The walk over a directory tree.
#ifndef AGENT_TREE_H
#define AGENT_TREE_H

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "inventory_file.h"
#include "util/util.h"

// root and a path below it, in one.
String join(const String& root, const String& relative);

// Fills in mode, size and time of the file or directory at path; false when they cannot be had.
bool read_status(const String& path, Entry& entry);

struct Walk {
    std::vector<String> skip;  // names left out wherever they occur, in any case of letters
    String own_file;           // left out, too: the file that the walk's result goes to
    std::function<void(std::uint64_t entries)> progress;

    std::vector<Entry> entries;       // found; a directory comes before what is in it
    std::vector<String> left_out;     // relative paths, for either reason above
    std::vector<String> not_entered;  // links back up the tree, listed but not followed
    std::vector<String> unreadable;   // directories and entries that the system refused

    void run(const String& root);

  private:
    void list(const String& root, const String& directory, std::vector<String>& pending);
    bool leads_back_up(const String& root, const String& directory, unsigned int names);
    bool is_wanted(const String& name, const String& path) const;

    std::unordered_map<String, unsigned int> m_names;  // directory to a hash of the names in it
};

#endif
