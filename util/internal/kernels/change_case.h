// Changes the case of ASCII letters.
#ifndef UTIL_INTERNAL_KERNELS_CHANGE_CASE_H
#define UTIL_INTERNAL_KERNELS_CHANGE_CASE_H

#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

// Copies bytes from `from` to `to`, which may be the same. Changes the case of the 26 letters from
// `first` ('a' or 'A') on. Returns whether one of the bytes is a NUL.
inline bool change_case(char* to, std::size_t size, char first, const char* from) {
    bool has_nul = false;
    for (std::size_t i = 0; i < size; ++i) {
        const char c = from[i];
        has_nul = has_nul || c == '\0';
        to[i] = c >= first && c < first + 26 ? static_cast<char>(c ^ 0x20) : c;
    }
    return has_nul;
}

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// The comparison is signed, so bytes from 0x80 up are below every letter.
inline Block case_changed(Block block, char first) {
    const Block letters = _mm_and_si128(_mm_cmpgt_epi8(block, all(static_cast<char>(first - 1))),
                                        _mm_cmplt_epi8(block, all(static_cast<char>(first + 26))));
    return _mm_xor_si128(block, _mm_and_si128(letters, all(0x20)));
}

// Texts of 8 to 15 bytes take two half blocks. The last block of a text overlaps the one before it.
// It is loaded before anything is stored, so every byte is changed once.
inline bool change_case(char* to, std::size_t size, char first, const char* from) {
    if (size >= block_size) {
        const Block last = load(from + size - block_size);
        Block least = last;
        for (std::size_t i = 0; i + block_size < size; i += block_size) {
            const Block block = load(from + i);
            least = _mm_min_epu8(least, block);
            store(to + i, case_changed(block, first));
        }
        store(to + size - block_size, case_changed(last, first));
        return equal_bits(least, _mm_setzero_si128()) != 0;
    }
    constexpr std::size_t half = block_size / 2;
    if (size < half) return scalar::change_case(to, size, first, from);
    const Block begin = _mm_loadl_epi64(reinterpret_cast<const Block*>(from));
    const Block end = _mm_loadl_epi64(reinterpret_cast<const Block*>(from + size - half));
    _mm_storel_epi64(reinterpret_cast<Block*>(to), case_changed(begin, first));
    _mm_storel_epi64(reinterpret_cast<Block*>(to + size - half), case_changed(end, first));
    return equal_bits(_mm_unpacklo_epi64(begin, end), _mm_setzero_si128()) != 0;
}

}  // namespace sse2
#endif

// In place.
inline void change_case(char* text, std::size_t size, char first) {
    kernels::change_case(text, size, first, text);
}

}  // namespace util

#endif
