// What XrDirectory lists.
#ifndef UTIL_FILES_DIRECTORY_LISTING_H
#define UTIL_FILES_DIRECTORY_LISTING_H

#include <memory>
#include <vector>

#include "util/files/xr_directory_entry.h"

namespace util {

using Entries = std::vector<std::unique_ptr<XrDirectoryEntry>>;

// Appends the machine's drive roots as the platform lists them, blanks trimmed. Raises
// std::bad_alloc.
void append_drive_roots(Entries& entries);

// Appends the entries of a directory in the order of the platform. Skips "." and "..", and other
// names that begin with a dot unless `include_hidden` is true. Returns false if the directory
// cannot be read. Raises std::bad_alloc, and what UTF8_stat raises when out of memory.
bool append_entries(const String& directory, bool include_hidden, Entries& entries);

}  // namespace util

#endif
