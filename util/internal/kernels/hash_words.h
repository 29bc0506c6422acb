// The hash of String, for whole groups of four bytes.
#ifndef UTIL_INTERNAL_KERNELS_HASH_WORDS_H
#define UTIL_INTERNAL_KERNELS_HASH_WORDS_H

#include "util/internal/kernels/kernels.h"

namespace util {

constexpr std::uint32_t rotate_left_5(std::uint32_t h) {
    return (h << 5) | (h >> 27);
}

namespace scalar {

// Returns `h` after "rotate left by 5, then xor with the word" for each little-endian word in turn.
inline std::uint32_t hash_words(std::uint32_t h, const char* bytes, std::size_t words) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes);
    for (; words > 0; --words, p += 4) {
        h = rotate_left_5(h) ^ (std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 |
                                std::uint32_t{p[2]} << 16 | std::uint32_t{p[3]} << 24);
    }
    return h;
}

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

inline Block rotate_left_20(Block words) {
    return _mm_or_si128(_mm_slli_epi32(words, 20), _mm_srli_epi32(words, 12));
}

// Rotation distributes over xor, so each word enters the hash rotated by 5 for every word after it.
// After 32 words that is 160 bits, a multiple of 32 and so no rotation. Words at the same position
// of different runs of 32 are therefore xored with each other, and `h` with the result. Within a
// run four words at a time are rotated by 20 and xored with the next four. The last four are hashed
// one by one.
inline std::uint32_t hash_words(std::uint32_t h, const char* bytes, std::size_t words) {
    constexpr std::size_t run = 32;
    if (words < run) return scalar::hash_words(h, bytes, words);
    constexpr std::size_t blocks = 8;
    Block sums[blocks];
#pragma GCC unroll 8
    for (std::size_t i = 0; i < blocks; ++i)
        sums[i] = load(bytes + i * block_size);
    for (bytes += 4 * run, words -= run; words >= run; bytes += 4 * run, words -= run) {
#pragma GCC unroll 8
        for (std::size_t i = 0; i < blocks; ++i)
            sums[i] = _mm_xor_si128(sums[i], load(bytes + i * block_size));
    }
    Block four = sums[0];
#pragma GCC unroll 8
    for (std::size_t i = 1; i < blocks; ++i)
        four = _mm_xor_si128(rotate_left_20(four), sums[i]);
    char last[block_size];
    store(last, four);
    h ^= scalar::hash_words(0, last, 4);
    return scalar::hash_words(h, bytes, words);
}

}  // namespace sse2
#endif

}  // namespace util

#endif
