// Mode and size of what a directory lists.
#ifndef UTIL_FILES_ENTRY_STATUS_H
#define UTIL_FILES_ENTRY_STATUS_H

#include <cstddef>
#include <string_view>

#include "util/text/byte_string.h"

struct _WIN32_FIND_DATAW;

namespace util {

// What UTF8_stat returns, or zeros if it fails.
struct EntryStatus {
    int mode = 0;
    long size = 0;
};

// Finds the status of the entries of one directory, as UTF8_stat returns it for their full paths.
// Uses the search's own data if the two must be equal. A status call per entry would more than
// double the time of a listing.
class EntryStatusReader {
  public:
    // The directory must outlive this object.
    explicit EntryStatusReader(const String& directory);

    EntryStatus status_of(std::string_view name, const _WIN32_FIND_DATAW& found) const;

  private:
    const String& m_directory;
    const std::size_t m_name_limit;  // names below this length make a path that the call can take
};

}  // namespace util

#endif
