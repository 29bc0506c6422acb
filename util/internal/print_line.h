// Diagnostics on standard output.
#ifndef UTIL_INTERNAL_PRINT_LINE_H
#define UTIL_INTERNAL_PRINT_LINE_H

#include <cstdio>

namespace util {

// Prints both texts and a line end with one call. Needs no memory. Failures are ignored.
inline void print_line(const char* begin, const char* end) {
#ifdef _WIN32
    // The runtime's own printf. The compiler's makes a call per byte, which is a write per byte on
    // a console: 18 s for a path of 40,000 bytes.
    __ms_printf("%s%s\n", begin, end);
#else
    std::printf("%s%s\n", begin, end);
#endif
}

}  // namespace util

#endif
