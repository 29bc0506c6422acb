#include "util/files/directory_reader.h"

#include <cstring>
#include <new>
#include <utility>

#include "util/internal/encoding.h"

namespace util {

namespace {

String search_pattern(const String& path) {
    const bool separated =
        !path.empty() && (path.view().back() == '\\' || path.view().back() == '/');
    return path + (separated ? "*.*" : "\\*.*");
}

}  // namespace

// Not UTF8_FindFirstFile, nor its companion below: they would report want of memory as a failure of
// the search, with a last error that the search may leave, too.
DirectoryReader::DirectoryReader(const String& path)
    : m_search(FindFirstFileW(wide_path(search_pattern(path)).c_str(), &m_data)) {
    if (is_open()) convert_name();
}

bool DirectoryReader::next() {
    if (!is_open()) return false;
    if (m_first_pending) {
        m_first_pending = false;
        return true;
    }
    if (!FindNextFileW(m_search.get(), &m_data)) return false;
    convert_name();
    return true;
}

void DirectoryReader::convert_name() {
    if (!name_to_utf8(m_data.cFileName, m_name)) throw std::bad_alloc();
}

std::vector<String> drive_roots() {
    std::vector<String> roots;
    char list[1024];
    const DWORD length = GetLogicalDriveStringsA(sizeof list, list);
    if (length >= sizeof list) return roots;  // not fetched: it would not fit
    for (const char* root = list; root < list + length; root += std::strlen(root) + 1) {
        String trimmed = String(root).trim("\t\r\n ");
        if (!trimmed.empty()) roots.push_back(std::move(trimmed));
    }
    return roots;
}

}  // namespace util
