#include "compare.h"

#include <algorithm>

#include "formats.h"
#include "inventory_file.h"
#include "options.h"
#include "output.h"

namespace {

struct Change {
    const char* kind;
    const Entry* entry;   // as it is now; as it was when it was removed
    const Entry* before;  // null when it was added
    const Entry* after;   // null when it was removed
};

using Changes = std::vector<Change>;

void sort_by_path(std::vector<Entry>& entries) {
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.path < b.path; });
}

// One pass over both lists, each in the order of its paths.
Changes changes_between(const std::vector<Entry>& olds, const std::vector<Entry>& nows) {
    Changes changes;
    auto old = olds.begin();
    auto now = nows.begin();
    while (old != olds.end() || now != nows.end()) {
        if (now == nows.end() || (old != olds.end() && old->path < now->path)) {
            changes.push_back({"removed", &*old, &*old, nullptr});
            ++old;
        } else if (old == olds.end() || now->path < old->path) {
            changes.push_back({"added", &*now, nullptr, &*now});
            ++now;
        } else {
            if (!is_same(*old, *now)) changes.push_back({"changed", &*now, &*old, &*now});
            ++old;
            ++now;
        }
    }
    return changes;
}

int count_of(const Changes& changes, std::string_view kind) {
    return static_cast<int>(std::count_if(
        changes.begin(), changes.end(), [&](const Change& change) { return change.kind == kind; }));
}

String size_of(const Entry& entry) {
    return entry.is_directory() ? "-" : size_text(double(entry.size));
}

void print_source(const char* label, const Inventory& inventory) {
    print(String::format("%s  ", label) + date_text(inventory.taken) + "  " + inventory.root +
          ", " + std::to_string(inventory.entries.size()).c_str() + " entries");
}

void print_text(const Inventory& old, const Inventory& now, const Changes& changes) {
    print_source("old", old);
    print_source("new", now);
    for (const Change& change : changes) {
        const Entry& entry = *change.entry;
        String line = String::format("%-7s  %9s  ", change.kind, size_of(entry).c_str()) +
                      date_text(entry.modified) + "  " + entry.path;
        if (change.before && change.after) {
            line += " (was " + size_of(*change.before) + ", " + date_text(change.before->modified) +
                    ")";
        }
        print(line);
    }
    print(String::format("%d added, %d removed, %d changed", count_of(changes, "added"),
                         count_of(changes, "removed"), count_of(changes, "changed")));
}

String json_source(const Inventory& inventory) {
    return json_object({{"root", json(inventory.root)},
                        {"taken", json(utc_text(inventory.taken))},
                        {"entries", json(std::uint64_t{inventory.entries.size()})}});
}

void print_json(const Inventory& old, const Inventory& now, const Changes& changes) {
    JsonDocument document;
    document.member("old", json_source(old));
    document.member("new", json_source(now));
    document.list("changes");
    for (const Change& change : changes) {
        document.element(json_object(
            {{"change", json(String(change.kind))},
             {"path", json(change.entry->path)},
             {"old", change.before ? json_object(json_status(*change.before)) : "null"},
             {"new", change.after ? json_object(json_status(*change.after)) : "null"}}));
    }
    document.end();
}

void print_csv(const Changes& changes) {
    print("change,path,old_type,old_size,old_modified,new_type,new_size,new_modified");
    for (const Change& change : changes) {
        std::vector<String> fields = {change.kind, change.entry->path};
        for (const Entry* entry : {change.before, change.after}) {
            const std::vector<String> status = entry ? csv_status(*entry) : std::vector<String>(3);
            fields.insert(fields.end(), status.begin(), status.end());
        }
        print(csv_row(fields));
    }
}

int compare(const Arguments& arguments) {
    const Options options(arguments, {"--json", "--csv"});
    const Format format = format_of(options);
    if (options.operands().size() != 2) throw UsageError("compare needs two inventory files");
    Inventory old = read_inventory(options.operands()[0]);
    Inventory now = read_inventory(options.operands()[1]);
    sort_by_path(old.entries);
    sort_by_path(now.entries);

    const Changes changes = changes_between(old.entries, now.entries);
    if (format == Format::json) {
        print_json(old, now, changes);
    } else if (format == Format::csv) {
        print_csv(changes);
    } else {
        print_text(old, now, changes);
    }
    return changes.empty() ? all_well : differences;
}

}  // namespace

const Verb compare_verb = {"compare", "[--json | --csv] OLD NEW",
                           "Shows what changed between two inventory files.",
                           "  --json  one JSON object: both sources, and the list of changes\n"
                           "  --csv   one line for each change\n"
                           "Exit status: 0 no change, 1 changes, 2 trouble.",
                           compare};
