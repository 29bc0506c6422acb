// Not installed. Mode and size of what a directory lists.
#ifndef UTIL_FILES_ENTRY_STATUS_H
#define UTIL_FILES_ENTRY_STATUS_H

#include <cstddef>
#include <string_view>

#include "util/text/byte_string.h"

struct _WIN32_FIND_DATAW;

namespace util {

// What UTF8_stat says; zeros where it fails.
struct EntryStatus {
    int mode = 0;
    long size = 0;
};

// The status of the entries of one directory, as UTF8_stat gives it for their paths. It is taken
// from what the search has already brought wherever that must be the same: a call per entry would
// more than double the time of a listing.
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
