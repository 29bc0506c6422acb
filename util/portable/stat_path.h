// What both status calls share.
#ifndef UTIL_PORTABLE_STAT_PATH_H
#define UTIL_PORTABLE_STAT_PATH_H

#include <string_view>

struct _stat64i32;  // <sys/stat.h>

namespace util {

// Whether path ends in a backslash that the runtime's status call would stumble over: any but that
// of a drive's root ("C:\") or of the current drive ("\").
inline bool has_surplus_backslash(std::string_view path) {
    return path.size() >= 2 && path.back() == '\\' && path[path.size() - 2] != ':';
}

// _wstat64i32, which takes one separator more from the end. The compiler's own function of that
// name is not called: it makes a copy for that and does not check whether it was allocated.
int stat_wide(const wchar_t* path, struct _stat64i32* record);

}  // namespace util

#endif
