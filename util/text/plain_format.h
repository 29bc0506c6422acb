// Not installed. The printf directives that most formats are made of, without the runtime.
#ifndef UTIL_TEXT_PLAIN_FORMAT_H
#define UTIL_TEXT_PLAIN_FORMAT_H

#include <cstdarg>
#include <cstddef>
#include <optional>

namespace util {

struct FormattedLength {
    std::size_t length;   // of the whole text
    std::size_t visible;  // of what comes before its first NUL, which only %c can have put there
};

// Formats as the runtime does, if fmt holds no other directives than %s %d %i %u %c %x %ld %lu and
// %%, without flags, widths and precisions; otherwise the result is empty. A text longer than size
// is measured to its end, and some of it written. Uses the arguments up.
std::optional<FormattedLength> format_plainly(char* space, std::size_t size, const char* fmt,
                                              va_list args);

}  // namespace util

#endif
