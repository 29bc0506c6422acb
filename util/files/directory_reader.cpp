#include "util/files/directory_reader.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "util/files/wide_path.h"
#include "util/portable/utf8.h"
#include "util/portable/utf8_files.h"

namespace util {

namespace {

String search_pattern(const String& path) {
    const bool separated =
        !path.empty() && (path.view().back() == '\\' || path.view().back() == '/');
    return path + (separated ? "*.*" : "\\*.*");
}

}  // namespace

// Not UTF8_FindFirstFile: it would report want of memory as a directory that cannot be read.
DirectoryReader::DirectoryReader(const String& path)
    : m_search(FindFirstFileW(wide_path(search_pattern(path)).c_str(), &m_data)) {
    if (!is_open()) return;
    String name;
    if (!UTIL_WideCharToUtf8(m_data.cFileName, &name)) throw std::bad_alloc();
    std::memcpy(m_name, name.c_str(), name.size() + 1);
}

bool DirectoryReader::next() {
    if (!is_open()) return false;
    if (m_first_pending) {
        m_first_pending = false;
        return true;
    }
    if (UTF8_FindNextFile(m_search.get(), &m_data, m_name)) return true;
    // The platform never gives this code here; the name could not be converted for want of memory.
    if (GetLastError() == ERROR_INVALID_NAME) throw std::bad_alloc();
    return false;
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
