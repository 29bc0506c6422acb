// Decimal text to number as the runtime's atoi reads it, in the "C" locale whatever the host
// program has set.
#ifndef UTIL_INTERNAL_DECIMAL_H
#define UTIL_INTERNAL_DECIMAL_H

#include <cstdint>

#include "util/internal/ascii.h"

namespace util {

// Leading white space, an optional sign, then digits; 0 when there are none. Reading stops at the
// first other byte. Like the runtime's, it wraps modulo 2^32: "99999999999" is 1215752191.
inline std::int32_t parse_int(const char* text) {
    while (is_space(*text))
        ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    std::uint32_t value = 0;
    for (; is_digit(*text); ++text)
        value = value * 10 + static_cast<std::uint32_t>(*text - '0');
    return static_cast<std::int32_t>(negative ? 0 - value : value);
}

}  // namespace util

#endif
