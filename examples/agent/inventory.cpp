#include "inventory.h"

#include <algorithm>
#include <ctime>

#include "drives.h"
#include "inventory_file.h"
#include "output.h"
#include "tree.h"

namespace {

struct Request {
    std::vector<String> skip;
    String directory;
    String file;
};

Request parse(const Arguments& arguments) {
    Request request;
    std::vector<String> paths;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const String& word = arguments[i];
        if (word == "--skip") {
            if (++i == arguments.size()) throw UsageError("--skip needs a name");
            request.skip.push_back(arguments[i]);
        } else if (word.first("--", 0) == 0) {
            throw UsageError("unknown option '" + word + "'");
        } else {
            paths.push_back(word);
        }
    }
    if (paths.size() != 2) throw UsageError("inventory needs a directory and a file");
    request.directory = paths[0];
    request.file = paths[1];
    return request;
}

// The empty path is a valid XrDirectory, the list of drives, but no tree.
void require_directory(const String& path) {
    if (!path.empty() && XrDirectory(path).isValid()) return;
    throw Trouble("'" + path + "' " +
                  (XrFile::Exists(path, 0) ? "is not a directory" : "does not exist"));
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

void print_row(const char* label, const String& value) {
    print(String::format("  %-11s  ", label) + value);
}

void print_totals(const Inventory& inventory) {
    std::uint64_t bytes = 0;
    std::uint64_t directories = 0;
    for (const Entry& entry : inventory.entries) {
        bytes += entry.size;
        if (entry.is_directory()) ++directories;
    }
    print_row("entries", std::to_string(inventory.entries.size()));
    print_row("directories", std::to_string(directories));
    print_row("bytes", std::to_string(bytes) + " (" + size_text(double(bytes)).str() + ")");
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

}  // namespace

int inventory(const Arguments& arguments) {
    const Request request = parse(arguments);
    require_directory(request.directory);

    Walk walk;
    walk.skip = request.skip;
    walk.own_file = request.file;
    {
        Progress progress;
        walk.progress = [&progress](std::uint64_t entries) { progress.show(entries); };
        walk.run(request.directory);
    }
    if (walk.entries.empty() && !walk.unreadable.empty()) {
        throw Trouble("'" + request.directory + "' cannot be read");
    }
    for (const String& path : walk.unreadable)
        warn("cannot read " + path);
    for (const String& path : walk.not_entered)
        warn("not followed, leads back up: " + path);

    write_inventory(request.file, {request.directory, std::time(nullptr), std::move(walk.entries)});
    const Inventory stored = read_inventory(request.file);
    const std::vector<String> changed = changed_since(stored);
    for (const String& path : changed)
        warn("changed meanwhile: " + path);

    print("inventory of " + stored.root + ", " + date_text(stored.taken));
    for (const String& path : walk.left_out)
        print_row("left out", path);
    print_totals(stored);
    print_row("verified", std::to_string(stored.entries.size() - changed.size()) +
                              " entries of the file are as on the disk");
    print_largest(stored.entries);
    print_drives();

    if (!walk.unreadable.empty()) return trouble;
    return changed.empty() ? all_well : differences;
}
