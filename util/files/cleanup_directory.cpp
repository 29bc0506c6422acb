#include "util/files/cleanup_directory.h"

#include <cwchar>
#include <string>

#include "util/internal/encoding.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace {

bool is_self_or_parent(const wchar_t* name) {
    return std::wcscmp(name, L".") == 0 || std::wcscmp(name, L"..") == 0;
}

// Deletes the files and counts the subdirectories; path ends in a backslash.
int delete_files(std::wstring path) {
    const std::size_t prefix = path.size();
    path.reserve(prefix + MAX_PATH);  // no name is longer: nothing is raised once a file is gone
    path += L"*.*";
    WIN32_FIND_DATAW found;
    const util::ScopedSearch search(FindFirstFileW(path.c_str(), &found));
    int subdirectories = 0;
    for (BOOL more = bool(search); more; more = FindNextFileW(search.get(), &found)) {
        if (is_self_or_parent(found.cFileName)) continue;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            ++subdirectories;
            continue;
        }
        path.resize(prefix);
        path += found.cFileName;
        DeleteFileW(path.c_str());
    }
    return subdirectories;
}

}  // namespace

int UTIL_cleanupDir(const char* path, int removeDir) {
    // An empty path would mean the root of the current drive, which nobody means.
    if (!path || !*path) return 0;
    try {
        const std::wstring wide = util::wide_path(path);
        const int subdirectories = delete_files(wide + L"\\");
        if (removeDir) RemoveDirectoryW(wide.c_str());
        return subdirectories;
    } catch (...) {
        return 0;
    }
}
