// The process's environment in UTF-8.
#ifndef UTIL_PORTABLE_ENVIRONMENT_H
#define UTIL_PORTABLE_ENVIRONMENT_H

#include "util/text/byte_string.h"

namespace util {

// The variable's value; "" when it is unset. Read from the system's own block, which sees the
// changes of every runtime in the process and holds characters that the ANSI code page lacks.
// Any thread may call it. Leaves the last error alone; raises std::bad_alloc.
String environment_value(const wchar_t* name);

}  // namespace util

#endif
