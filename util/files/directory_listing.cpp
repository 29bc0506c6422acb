#include "util/files/directory_listing.h"

#include "util/internal/windows.h"
// after the platform's header
#include <sys/stat.h>

#include <cstring>
#include <new>

#include "util/files/directory_search.h"
#include "util/files/entry_status.h"
#include "util/internal/encoding.h"
#include "util/internal/path.h"

namespace util {

namespace {

bool is_wanted(const char* name, bool include_hidden) {
    if (name[0] != '.') return true;
    return include_hidden && name[1] != '\0' && !(name[1] == '.' && name[2] == '\0');
}

}  // namespace

void append_drive_roots(Entries& entries) {
    char list[1024];
    const DWORD length = GetLogicalDriveStringsA(sizeof list, list);
    if (length >= sizeof list) return;  // not fetched: it would not fit
    for (const char* root = list; root < list + length; root += std::strlen(root) + 1) {
        const String trimmed = String(root).trim("\t\r\n ");
        if (trimmed.empty()) continue;
        entries.push_back(std::make_unique<XrDirectoryEntry>(trimmed, _S_IFDIR, 0));
    }
}

// Does not use UTF8_FindFirstFile and UTF8_FindNextFile. They report that memory ran out as a
// failure of the search, with a last error that a search can also leave.
bool append_entries(const String& directory, bool include_hidden, Entries& entries) {
    const std::string pattern = join_unless_separated(directory.view(), "*.*");
    DirectorySearch search(wide_path(pattern.c_str()).c_str());
    if (!search.is_open()) return false;
    const EntryStatusReader statuses(directory);
    char name[MAX_PATH * 3];  // a UTF-16 unit takes three bytes of UTF-8 at most
    while (const WIN32_FIND_DATAW* const found = search.next()) {
        if (!name_to_utf8(found->cFileName, name)) throw std::bad_alloc();
        if (!is_wanted(name, include_hidden)) continue;
        const EntryStatus status = statuses.status_of(name, *found);
        entries.push_back(std::make_unique<XrDirectoryEntry>(name, status.mode, status.size));
    }
    return true;
}

}  // namespace util
