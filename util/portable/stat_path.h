// Not installed. The one path form that both status calls repair.
#ifndef UTIL_PORTABLE_STAT_PATH_H
#define UTIL_PORTABLE_STAT_PATH_H

#include <string_view>

namespace util {

// Whether path ends in a backslash that the runtime's status call would stumble over: any but that
// of a drive's root ("C:\") or of the current drive ("\").
inline bool has_surplus_backslash(std::string_view path) {
    return path.size() >= 2 && path.back() == '\\' && path[path.size() - 2] != ':';
}

}  // namespace util

#endif
