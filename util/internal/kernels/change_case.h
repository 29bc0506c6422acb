// Moving ASCII letters to the other case.
#ifndef UTIL_INTERNAL_KERNELS_CHANGE_CASE_H
#define UTIL_INTERNAL_KERNELS_CHANGE_CASE_H

#include <cstring>

#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

// The 26 letters from first ('a' or 'A') on change case, in place; all other bytes stay.
inline void change_case(char* text, std::size_t size, char first) {
    for (std::size_t i = 0; i < size; ++i) {
        if (text[i] >= first && text[i] < first + 26) text[i] = static_cast<char>(text[i] ^ 0x20);
    }
}

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// Bytes from 0x80 up are negative to the comparison, so they are below every letter.
inline Block case_changed(Block block, char first) {
    const Block letters = _mm_and_si128(_mm_cmpgt_epi8(block, all(static_cast<char>(first - 1))),
                                        _mm_cmplt_epi8(block, all(static_cast<char>(first + 26))));
    return _mm_xor_si128(block, _mm_and_si128(letters, all(0x20)));
}

// Half a block at a time for short texts. The last block of a text overlaps the one before it: it
// is taken from the text before anything is written, so every byte is changed once.
inline void change_case(char* text, std::size_t size, char first) {
    if (size >= block_size) {
        char* const last = text + size - block_size;
        const Block changed_last = case_changed(load(last), first);
        for (; text < last; text += block_size)
            store(text, case_changed(load(text), first));
        store(last, changed_last);
    } else if (size >= block_size / 2) {
        const auto half = [](char* at) { return reinterpret_cast<Block*>(at); };
        char* const last = text + size - block_size / 2;
        const Block changed_first = case_changed(_mm_loadl_epi64(half(text)), first);
        const Block changed_last = case_changed(_mm_loadl_epi64(half(last)), first);
        _mm_storel_epi64(half(text), changed_first);
        _mm_storel_epi64(half(last), changed_last);
    } else {
        scalar::change_case(text, size, first);
    }
}

}  // namespace sse2
#endif

}  // namespace util

#endif
