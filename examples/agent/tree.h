// The walk over a directory tree.
#ifndef AGENT_TREE_H
#define AGENT_TREE_H

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "inventory_file.h"
#include "util/util.h"

// The path of `relative` below `root`.
String join(const String& root, const String& relative);

// Fills in mode, size and time of the file or directory at `path`. False, with the platform's last
// error, when the system refuses.
bool read_status(const String& path, Entry& entry);

struct Walk {
    struct Refusal {
        String path;    // relative
        String reason;  // the system's text
    };

    std::vector<String> skip;  // names to leave out everywhere; upper and lower case are the same
    String own_file;           // left out as well: the file that the result is written to
    std::function<void(std::uint64_t entries)> progress;

    // Results, with relative paths.
    std::vector<Entry> entries;       // a directory comes before its content
    std::vector<String> left_out;     // because of `skip` or `own_file`
    std::vector<String> not_entered;  // links back up the tree: listed, not followed
    std::vector<Refusal> unreadable;  // directories and entries that the system refused

    void run(const String& root);

  private:
    void list(const String& root, const String& directory, std::vector<String>& pending);
    bool leads_back_up(const String& root, const String& directory, unsigned int names);
    bool is_wanted(const String& name, const String& path) const;

    std::unordered_map<String, unsigned int> m_names;  // directory to a hash of the names in it
};

#endif
