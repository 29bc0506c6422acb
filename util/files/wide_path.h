// Not installed. Paths for the platform's wide calls.
#ifndef UTIL_FILES_WIDE_PATH_H
#define UTIL_FILES_WIDE_PATH_H

#include <string>

namespace util {

// The UTF-8 path, which must not be null, in UTF-16. Invalid UTF-8 becomes U+FFFD. Raises
// std::bad_alloc, and what UTIL_Utf8ToWideChar raises.
std::wstring wide_path(const char* utf8);

}  // namespace util

#endif
