#include "util/files/cleanup_directory.h"

#include <cwchar>
#include <string>

#include "util/files/directory_search.h"
#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/internal/path.h"
#include "util/internal/windows.h"

namespace {

bool is_self_or_parent(const wchar_t* name) {
    return std::wcscmp(name, L".") == 0 || std::wcscmp(name, L"..") == 0;
}

// Deletes the files and returns the number of subdirectories.
int delete_files(const std::wstring& directory) {
    std::wstring path = util::join_always(directory, L"*.*");
    const std::size_t prefix = directory.size() + 1;
    path.reserve(prefix + MAX_PATH);  // no name is longer: nothing is raised once a file is gone
    util::DirectorySearch search(path.c_str());
    int subdirectories = 0;
    while (const WIN32_FIND_DATAW* const found = search.next()) {
        if (is_self_or_parent(found->cFileName)) continue;
        if (found->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            ++subdirectories;
            continue;
        }
        path.resize(prefix);
        path += found->cFileName;
        DeleteFileW(path.c_str());
    }
    return subdirectories;
}

}  // namespace

int UTIL_cleanupDir(const char* path, int removeDir) {
    // An empty path would mean the root of the current drive, which nobody wants to empty.
    if (!path || !*path) return 0;
    return util::guarded(0, [&] {
        const std::wstring wide = util::wide_path(path);
        const int subdirectories = delete_files(wide);
        if (removeDir) RemoveDirectoryW(wide.c_str());
        return subdirectories;
    });
}
