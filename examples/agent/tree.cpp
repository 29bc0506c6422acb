#include "tree.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

fs::path native(const String& utf8) {
    return fs::u8path(utf8.str());
}

bool same_file(const String& a, const String& b) {
    std::error_code error;
    return fs::equivalent(native(a), native(b), error);
}

// XrDirectory gives an unreadable directory an empty listing, as if it were empty.
bool is_readable(const String& directory) {
    std::error_code error;
    const fs::directory_iterator opened(native(directory), error);
    return !error;
}

unsigned int hash_of_names(const XrDirectory::List& list) {
    unsigned int hash = 0;
    for (const XrDirectoryEntry* entry : list)
        hash = hash * 31 + entry->hash();
    return hash;
}

}  // namespace

String join(const String& root, const String& relative) {
    if (relative.empty()) return root;
    if (root.empty()) return relative;
    const char last = root.view().back();
    return root + (last == '\\' || last == '/' ? "" : "\\") + relative;
}

bool read_status(const String& path, Entry& entry) {
    struct _stat64i32 status;
    if (UTF8_stat(path, &status) != 0) return false;
    entry.mode = status.st_mode;
    entry.modified = status.st_mtime;
    entry.size = 0;
    if (entry.is_directory()) return true;
    // Neither this record nor a listing's entry holds more than the low 32 bits of a size, and
    // nothing in them tells that bits are missing. The standard library knows all 64.
    std::error_code error;
    const std::uint64_t size = fs::file_size(native(path), error);
    if (error) return false;
    entry.size = size;
    return true;
}

void Walk::run(const String& root) {
    std::vector<String> pending = {""};
    while (!pending.empty()) {
        const String directory = pending.back();
        pending.pop_back();
        if (!is_readable(join(root, directory))) {
            unreadable.push_back(directory);
        } else {
            list(root, directory, pending);
        }
    }
}

void Walk::list(const String& root, const String& directory, std::vector<String>& pending) {
    XrDirectory listing(join(root, directory));
    const XrDirectory::List& list = *listing.getDirectoryList(true, false);
    if (leads_back_up(root, directory, hash_of_names(list))) {
        not_entered.push_back(directory);
        return;
    }
    for (const XrDirectoryEntry* found : list) {
        Entry entry;
        entry.path = join(directory, *found);
        const String path = join(root, entry.path);
        if (!is_wanted(*found, path)) {
            left_out.push_back(entry.path);
            continue;
        }
        if (!read_status(path, entry)) {
            unreadable.push_back(entry.path);
            continue;
        }
        if (entry.is_directory()) pending.push_back(entry.path);
        entries.push_back(std::move(entry));
        progress(entries.size());
    }
}

// A link may lead to a directory above it; following it would never end. To ask the system about
// every pair would take most of the walk's time, so only directories with the same names in them
// are asked about.
bool Walk::leads_back_up(const String& root, const String& directory, unsigned int names) {
    m_names[directory] = names;
    String above = directory;
    while (!above.empty()) {
        const std::uint64_t cut = above.last('\\');
        above = cut == String::npos ? String() : above.substr(0, cut);
        if (m_names[above] == names && same_file(join(root, directory), join(root, above))) {
            return true;
        }
    }
    return false;
}

bool Walk::is_wanted(const String& name, const String& path) const {
    const String lower = name.to_lower();
    for (const String& skipped : skip) {
        if (lower == skipped.to_lower()) return false;
    }
    // The names decide first: asking the system about every file would cost more than the walk.
    const String own_name = String(native(own_file).filename().u8string());
    return lower != own_name.to_lower() || !same_file(path, own_file);
}
