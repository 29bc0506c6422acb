// Compares texts, ignoring the case of ASCII letters.
#ifndef UTIL_INTERNAL_KERNELS_COMPARE_FOLDED_H
#define UTIL_INTERNAL_KERNELS_COMPARE_FOLDED_H

#include "util/internal/ascii.h"
#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

// Returns the number of bytes before the first difference other than the case of a letter; `size`
// if there is none.
inline std::size_t equal_folded(const char* a, const char* b, std::size_t size) {
    std::size_t i = 0;
    while (i < size && to_lower(a[i]) == to_lower(b[i]))
        ++i;
    return i;
}

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// Sets the bytes (0xFF) that are equal, or the same letter in two cases. Such letters differ in bit
// 0x20 alone, and are letters if the one with that bit is. The addition moves 'a' to 'z' to the
// highest signed numbers, so one comparison finds them.
inline Block equal_but_for_case(Block a, Block b) {
    const Block case_bit = all(0x20);
    const Block difference = _mm_xor_si128(a, b);
    const Block moved = _mm_add_epi8(_mm_or_si128(a, case_bit), all(0x7F - 'z'));
    const Block letters = _mm_cmpgt_epi8(moved, all(0x7F - 26));
    const Block case_alone = _mm_and_si128(_mm_cmpeq_epi8(difference, case_bit), letters);
    return _mm_or_si128(_mm_cmpeq_epi8(difference, _mm_setzero_si128()), case_alone);
}

inline std::size_t equal_folded(const char* a, const char* b, std::size_t size) {
    const auto block_at = [&](std::size_t i) {
        return equal_but_for_case(load(a + i), load(b + i));
    };
    const auto differing = [](Block equal) { return block_bits(equal) ^ 0xFFFF; };
    std::size_t i = 0;
    for (; i + 2 * block_size <= size; i += 2 * block_size) {
        if (differing(_mm_and_si128(block_at(i), block_at(i + block_size))) != 0) break;
    }
    for (; i + block_size <= size; i += block_size) {
        if (const unsigned bits = differing(block_at(i))) return i + lowest_bit(bits);
    }
    return i + scalar::equal_folded(a + i, b + i, size - i);
}

}  // namespace sse2
#endif

}  // namespace util

#endif
