#include "util/host/base_name.h"

#include <cstring>
#include <string_view>

int UTIL_basename(char* out, const char* path) {
    if (!out) return -1;
    std::string_view name = path ? path : "";
    name = name.substr(0, name.find_last_not_of('/') + 1);  // npos + 1 is 0
    name = name.substr(name.rfind('/') + 1);
    std::memmove(out, name.data(), name.size());
    out[name.size()] = '\0';
    return -1;
}

int UTIL_CDPbasename(char* out, const char* path) {
    return UTIL_basename(out, path);
}
