// The printf directives that most formats are made of, without the runtime.
#ifndef UTIL_TEXT_COMMON_FORMAT_H
#define UTIL_TEXT_COMMON_FORMAT_H

#include <cstdarg>
#include <cstddef>
#include <optional>

namespace util {

struct FormattedLength {
    std::size_t length;   // of the whole text
    std::size_t visible;  // of the part before the first NUL, which only %c can write
};

constexpr std::size_t unknown_length = ~std::size_t{0};

// Formats as the runtime does, if `fmt` contains no directives but %s %d %i %u %c %x %ld %lu and %%
// without flags, widths and precisions. Otherwise returns nothing. For a text longer than `size`
// the length is unknown, and a part of the text is written. With `size` 0 nothing is written and
// the length is known. Uses the arguments up.
std::optional<FormattedLength> format_common(char* space, std::size_t size, const char* fmt,
                                             va_list args);

}  // namespace util

#endif
