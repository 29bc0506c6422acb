#include "tree.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

#include "errors.h"

namespace fs = std::filesystem;

namespace {

fs::path native(const String& utf8) {
    return fs::u8path(utf8.str());
}

bool same_file(const String& a, const String& b) {
    std::error_code error;
    return fs::equivalent(native(a), native(b), error);
}

// False, with the platform's last error, for a directory that cannot be listed. XrDirectory gives
// such a directory an empty listing.
bool is_readable(const String& directory) {
    WIN32_FIND_DATAW first;
    const HANDLE search = UTF8_FindFirstFile(join(directory, "*"), &first, nullptr);
    if (search == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;  // empty
    FindClose(search);
    return true;
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
    // UTF8_stat() and the entries of a listing have sizes of 32 bits. The runtime's record has 64.
    struct _stat64 status;
    if (_wstat64(native(path).c_str(), &status) != 0) return false;
    entry.mode = status.st_mode;
    entry.modified = status.st_mtime;
    entry.size = entry.is_directory() ? 0 : static_cast<std::uint64_t>(status.st_size);
    return true;
}

void Walk::run(const String& root) {
    std::vector<String> pending = {""};
    while (!pending.empty()) {
        const String directory = pending.back();
        pending.pop_back();
        if (!is_readable(join(root, directory))) {
            unreadable.push_back({directory, last_error_text()});
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
            unreadable.push_back({entry.path, last_error_text()});
            continue;
        }
        if (entry.is_directory()) pending.push_back(entry.path);
        entries.push_back(std::move(entry));
        progress(entries.size());
    }
}

// A link may lead to a directory above it. Following such a link would never end. Comparing every
// pair of directories would take most of the walk's time, so only directories with the same names
// in them are compared.
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
    // The names are compared first: comparing the files would cost more than the walk.
    const String own_name = String(native(own_file).filename().u8string());
    return lower != own_name.to_lower() || !same_file(path, own_file);
}
