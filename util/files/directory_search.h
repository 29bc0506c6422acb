// Goes through the entries of one directory.
#ifndef UTIL_FILES_DIRECTORY_SEARCH_H
#define UTIL_FILES_DIRECTORY_SEARCH_H

#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace util {

// A search of the platform. One object belongs to one thread. Raises nothing.
class DirectorySearch {
  public:
    // Starts the search for a pattern such as L"C:\\mnt\\*.*".
    explicit DirectorySearch(const wchar_t* pattern)
        : m_search(FindFirstFileW(pattern, &m_entry)), m_is_first(true) {}

    // Returns false if the directory cannot be read.
    bool is_open() const { return static_cast<bool>(m_search); }

    // Returns the next entry, or null at the end and when the search breaks off. The entry is valid
    // until the next call.
    const WIN32_FIND_DATAW* next() {
        if (!is_open()) return nullptr;
        if (!m_is_first && !FindNextFileW(m_search.get(), &m_entry)) return nullptr;
        m_is_first = false;
        return &m_entry;
    }

  private:
    WIN32_FIND_DATAW m_entry;  // declared first: the search fills it
    ScopedSearch m_search;
    bool m_is_first;
};

}  // namespace util

#endif
