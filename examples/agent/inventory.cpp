#include "inventory.h"

#include <algorithm>
#include <ctime>

#include "drives.h"
#include "formats.h"
#include "inventory_file.h"
#include "options.h"
#include "output.h"
#include "tree.h"

namespace {

// The empty path is a valid XrDirectory, the list of drives, but no tree.
void require_directory(const String& path) {
    if (!path.empty() && XrDirectory(path).isValid()) return;
    throw Trouble("'" + path + "' " +
                  (XrFile::Exists(path, 0) ? "is not a directory" : "does not exist"));
}

Walk walk_tree(const Options& options) {
    const String& directory = options.operands()[0];
    require_directory(directory);
    Walk walk;
    walk.skip = options.values("--skip");
    walk.own_file = options.operands()[1];
    Progress progress;
    walk.progress = [&progress](std::uint64_t entries) { progress.show(entries); };
    walk.run(directory);
    walk.progress = nullptr;
    if (walk.entries.empty() && !walk.unreadable.empty())
        throw Trouble("'" + directory + "' cannot be read: " + walk.unreadable[0].reason);
    return walk;
}

// The entries of the inventory that are no longer on the disk as it says.
std::vector<String> changed_since(const Inventory& inventory) {
    std::vector<String> changed;
    for (const Entry& entry : inventory.entries) {
        Entry now;
        const bool known = read_status(join(inventory.root, entry.path), now);
        if (!known || !is_same(now, entry)) changed.push_back(entry.path);
    }
    return changed;
}

struct Totals {
    std::uint64_t entries = 0;
    std::uint64_t directories = 0;
    std::uint64_t bytes = 0;
};

Totals totals_of(const Inventory& inventory) {
    Totals totals;
    for (const Entry& entry : inventory.entries) {
        ++totals.entries;
        totals.bytes += entry.size;
        if (entry.is_directory()) ++totals.directories;
    }
    return totals;
}

void print_row(const char* label, const String& value) {
    print(String::format("  %-11s  ", label) + value);
}

void print_largest(const std::vector<Entry>& entries) {
    std::vector<const Entry*> files;
    for (const Entry& entry : entries) {
        if (!entry.is_directory()) files.push_back(&entry);
    }
    const auto shown = files.begin() + std::min<std::ptrdiff_t>(5, files.end() - files.begin());
    std::partial_sort(files.begin(), shown, files.end(), [](const Entry* a, const Entry* b) {
        return a->size != b->size ? a->size > b->size : a->path < b->path;
    });
    if (files.empty()) return;
    print("largest files");
    for (auto file = files.begin(); file != shown; ++file) {
        // Names come last: their width on the screen is not the number of their bytes.
        print(String::format("  %9s  ", size_text(double((*file)->size)).c_str()) +
              date_text((*file)->modified) + "  " + (*file)->path);
    }
}

void print_drives() {
    print("drives");
    for (const Drive& drive : drives()) {
        print(String::format("  %-4s %-10s %-8s %9s free", drive.root.c_str(), drive.type.c_str(),
                             drive.file_system.c_str(), drive.free.c_str()));
    }
}

void print_text(const Inventory& inventory, const Walk& walk, std::size_t changed) {
    print("inventory of " + inventory.root + ", " + date_text(inventory.taken));
    for (const String& path : walk.left_out)
        print_row("left out", path);
    const Totals totals = totals_of(inventory);
    print_row("entries", std::to_string(totals.entries));
    print_row("directories", std::to_string(totals.directories));
    print_row("bytes",
              std::to_string(totals.bytes) + " (" + size_text(double(totals.bytes)).str() + ")");
    print_row("verified", std::to_string(inventory.entries.size() - changed) +
                              " entries of the file are as on the disk");
    print_largest(inventory.entries);
    print_drives();
}

void print_json(const Inventory& inventory, const Walk& walk, const std::vector<String>& changed) {
    const Totals totals = totals_of(inventory);
    JsonDocument document;
    document.member("root", json(inventory.root));
    document.member("taken", json(utc_text(inventory.taken)));
    document.member("bytes", json(totals.bytes));
    document.member("directories", json(totals.directories));
    document.list("entries");
    for (const Entry& entry : inventory.entries) {
        JsonMembers members = json_status(entry);
        members.emplace(members.begin(), "path", json(entry.path));
        document.element(json_object(members));
    }
    document.list("left_out");
    for (const String& path : walk.left_out)
        document.element(json(path));
    document.list("not_followed");
    for (const String& path : walk.not_entered)
        document.element(json(path));
    document.list("changed");
    for (const String& path : changed)
        document.element(json(path));
    document.list("unreadable");
    for (const auto& [path, reason] : walk.unreadable)
        document.element(json_object({{"path", json(path)}, {"reason", json(reason)}}));
    document.end();
}

void print_csv(const Inventory& inventory) {
    print("path,type,size,modified");
    for (const Entry& entry : inventory.entries) {
        std::vector<String> fields = csv_status(entry);
        fields.insert(fields.begin(), entry.path);
        print(csv_row(fields));
    }
}

// On standard error, so that they stand apart from a list for another program.
void warn_of_gaps(const Walk& walk, const std::vector<String>& changed) {
    for (const String& path : walk.not_entered)
        warn("not followed, leads back up: " + path);
    for (const String& path : changed)
        warn("changed meanwhile: " + path);
    if (walk.unreadable.empty()) return;
    for (const auto& [path, reason] : walk.unreadable)
        warn("cannot read " + path + ": " + reason);
    const std::size_t count = walk.unreadable.size();
    warn(std::to_string(count) + (count == 1 ? " entry" : " entries") +
         " could not be read; the inventory lacks what is there");
}

int inventory(const Arguments& arguments) {
    const Options options(arguments, {"--skip=", "--json", "--csv"});
    const Format format = format_of(options);
    if (options.operands().size() != 2) throw UsageError("inventory needs a directory and a file");
    const String& directory = options.operands()[0];
    const String& file = options.operands()[1];

    Walk walk = walk_tree(options);
    write_inventory(file, {directory, std::time(nullptr), std::move(walk.entries)});
    const Inventory stored = read_inventory(file);
    const std::vector<String> changed = changed_since(stored);

    if (format == Format::json) {
        print_json(stored, walk, changed);
    } else if (format == Format::csv) {
        print_csv(stored);
    } else {
        print_text(stored, walk, changed.size());
    }
    warn_of_gaps(walk, changed);
    if (!walk.unreadable.empty()) return trouble;
    return changed.empty() ? all_well : differences;
}

}  // namespace

const Verb inventory_verb = {
    "inventory", "[--skip NAME]... [--json | --csv] DIR FILE",
    "Lists the directory tree DIR into the inventory FILE.",
    "  --skip NAME  leave out files and directories of this name, everywhere\n"
    "  --json       print the whole inventory as one JSON object\n"
    "  --csv        print one line for each entry\n"
    "Exit status: 0 all well, 1 the tree changed meanwhile, 2 trouble or unreadable parts.",
    inventory};
