// The parts that ksl_lstat and UTF8_lstat share.
#ifndef UTIL_PORTABLE_STAT_PATH_H
#define UTIL_PORTABLE_STAT_PATH_H

#include <string_view>

struct _stat64i32;  // <sys/stat.h>

namespace util {

// Returns whether `path` ends in a backslash with which the runtime's status call fails. The roots
// "C:\" and "\" need theirs.
inline bool has_surplus_backslash(std::string_view path) {
    return path.size() >= 2 && path.back() == '\\' && path[path.size() - 2] != ':';
}

// Does what _wstat64i32 does, which ignores one separator at the end. The compiler's own function
// of that name is not called: it copies the path and does not check whether the copy was allocated.
int stat_wide(const wchar_t* path, struct _stat64i32* record);

}  // namespace util

#endif
