#include "util/portable/stat_path.h"

#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <new>

#include "util/internal/path.h"

namespace util {

namespace {

// Returns the length of `path` without one separator at its end, with which the runtime's call
// fails. The separator of a root ("C:\", "\") and of a path that begins with a server counts.
std::size_t length_to_examine(std::wstring_view path) {
    const bool is_root = path.size() <= 1 || (path.size() <= 3 && path[1] == L':');
    if (is_root || !is_separator(path.back())) return path.size();
    return is_separator(path[0]) && is_separator(path[1]) ? path.size() : path.size() - 1;
}

}  // namespace

int stat_wide(const wchar_t* path, struct _stat64i32* record) {
    const std::wstring_view given(path);
    const std::size_t length = length_to_examine(given);
    std::unique_ptr<wchar_t[]> shorter;
    if (length < given.size()) {
        shorter.reset(new (std::nothrow) wchar_t[length + 1]);
        if (!shorter) {
            errno = ENOMEM;
            return -1;
        }
        shorter[given.copy(shorter.get(), length)] = L'\0';
    }

    struct _stat64 full = {};
    const int result = _wstat64(shorter ? shorter.get() : path, &full);
    if (result != 0) return result;
    record->st_dev = full.st_dev;
    record->st_ino = full.st_ino;
    record->st_mode = full.st_mode;
    record->st_nlink = full.st_nlink;
    record->st_uid = full.st_uid;
    record->st_gid = full.st_gid;
    record->st_rdev = full.st_rdev;
    record->st_size = static_cast<_off_t>(full.st_size);  // the low 32 bits
    record->st_atime = full.st_atime;
    record->st_mtime = full.st_mtime;
    record->st_ctime = full.st_ctime;
    return 0;
}

}  // namespace util
