// Writes a number in hexadecimal digits.
#ifndef UTIL_INTERNAL_KERNELS_HEX_DIGITS_H
#define UTIL_INTERNAL_KERNELS_HEX_DIGITS_H

#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

// Writes all 16 digits of `v` in lower case.
inline void hex_digits(std::uint64_t v, char* to) {
    for (std::size_t i = 16; i-- > 0; v >>= 4)
        to[i] = "0123456789abcdef"[v & 0xF];
}

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

inline void hex_digits(std::uint64_t v, char* to) {
    const Block low_nibble = all(0xF);
    const Block bytes = _mm_cvtsi64_si128(static_cast<std::int64_t>(__builtin_bswap64(v)));
    const Block high = _mm_and_si128(_mm_srli_epi16(bytes, 4), low_nibble);
    const Block digits = _mm_unpacklo_epi8(high, _mm_and_si128(bytes, low_nibble));
    const Block to_letters = _mm_and_si128(_mm_cmpgt_epi8(digits, all(9)), all('a' - '9' - 1));
    store(to, _mm_add_epi8(_mm_add_epi8(digits, all('0')), to_letters));
}

}  // namespace sse2
#endif

}  // namespace util

#endif
