// Reads the process's environment as UTF-8.
#ifndef UTIL_PORTABLE_ENVIRONMENT_H
#define UTIL_PORTABLE_ENVIRONMENT_H

#include "util/text/byte_string.h"

namespace util {

// Returns the value of a variable, or "" if it is not set. Reads the system's own block. It
// contains the changes of every runtime in the process, and characters that the ANSI code page
// lacks. A
// value that grows faster than it can be read is "". Any thread may call this function. errno and
// the last error are unchanged. Raises std::bad_alloc.
String environment_value(const wchar_t* name);

}  // namespace util

#endif
