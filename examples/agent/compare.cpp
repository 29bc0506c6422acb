#include "compare.h"

#include <algorithm>

#include "inventory_file.h"
#include "output.h"

namespace {

String size_of(const Entry& entry) {
    return entry.is_directory() ? "-" : size_text(double(entry.size));
}

void print_line(const char* what, const Entry& entry, const String& remark = "") {
    print(String::format("%-7s  %9s  ", what, size_of(entry).c_str()) + date_text(entry.modified) +
          "  " + entry.path + remark);
}

struct Difference {
    int added = 0;
    int removed = 0;
    int changed = 0;

    bool any() const { return added + removed + changed > 0; }
};

void sort_by_path(std::vector<Entry>& entries) {
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.path < b.path; });
}

// One pass over both lists, each in the order of its paths.
Difference print_differences(const std::vector<Entry>& olds, const std::vector<Entry>& nows) {
    Difference difference;
    auto old = olds.begin();
    auto now = nows.begin();
    while (old != olds.end() || now != nows.end()) {
        if (now == nows.end() || (old != olds.end() && old->path < now->path)) {
            print_line("removed", *old++);
            ++difference.removed;
        } else if (old == olds.end() || now->path < old->path) {
            print_line("added", *now++);
            ++difference.added;
        } else {
            if (!is_same(*old, *now)) {
                print_line("changed", *now,
                           " (was " + size_of(*old) + ", " + date_text(old->modified) + ")");
                ++difference.changed;
            }
            ++old;
            ++now;
        }
    }
    return difference;
}

void print_source(const char* label, const Inventory& inventory) {
    print(String::format("%s  ", label) + date_text(inventory.taken) + "  " + inventory.root +
          ", " + std::to_string(inventory.entries.size()).c_str() + " entries");
}

}  // namespace

int compare(const Arguments& arguments) {
    if (arguments.size() != 2) throw UsageError("compare needs two inventory files");
    Inventory old = read_inventory(arguments[0]);
    Inventory now = read_inventory(arguments[1]);
    sort_by_path(old.entries);
    sort_by_path(now.entries);

    print_source("old", old);
    print_source("new", now);
    const Difference difference = print_differences(old.entries, now.entries);
    print(String::format("%d added, %d removed, %d changed", difference.added, difference.removed,
                         difference.changed));
    return difference.any() ? differences : all_well;
}
