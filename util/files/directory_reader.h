// The names of one directory, one at a time.
#ifndef UTIL_FILES_DIRECTORY_READER_H
#define UTIL_FILES_DIRECTORY_READER_H

#include <vector>

#include "util/internal/scoped_handle.h"
#include "util/text/byte_string.h"

namespace util {

class DirectoryReader {
  public:
    // Starts the search; is_open() tells whether the directory can be read. Raises std::bad_alloc,
    // and what the UTF-8 layer raises when it has no memory.
    explicit DirectoryReader(const String& path);

    bool is_open() const { return static_cast<bool>(m_search); }

    // Moves to the next name, the first one included; false at the end, and when the search breaks
    // off. Raises std::bad_alloc.
    bool next();

    const char* name() const { return m_name; }
    const _WIN32_FIND_DATAW& data() const { return m_data; }

  private:
    void convert_name();

    ScopedSearch m_search;
    bool m_first_pending = true;
    _WIN32_FIND_DATAW m_data;
    char m_name[MAX_PATH * 3];  // a UTF-16 unit takes three bytes of UTF-8 at most
};

// The machine's drive roots as the platform lists them, blanks trimmed.
std::vector<String> drive_roots();

}  // namespace util

#endif
