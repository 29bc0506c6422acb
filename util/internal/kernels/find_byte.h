// Not installed. Finding a byte: the runtime's own search goes byte by byte on Windows.
#ifndef UTIL_INTERNAL_KERNELS_FIND_BYTE_H
#define UTIL_INTERNAL_KERNELS_FIND_BYTE_H

#include "util/internal/kernels/kernels.h"

namespace util {
namespace plain {

// The number of bytes before the first c; size when there is none.
inline std::size_t find_byte(const char* text, std::size_t size, char c) {
    std::size_t i = 0;
    while (i < size && text[i] != c)
        ++i;
    return i;
}

// The number of bytes before the first c or the closing NUL, whichever comes first.
inline std::size_t find_byte_or_nul(const char* text, char c) {
    std::size_t i = 0;
    while (text[i] != c && text[i] != '\0')
        ++i;
    return i;
}

}  // namespace plain

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// Whole blocks come first, and of a block only bytes before size are looked at, so the first equal
// byte is the result. What is left over after whole blocks is covered by the last block of the
// text: it overlaps bytes that were seen not to be c, which changes nothing.
inline std::size_t find_byte(const char* text, std::size_t size, char c) {
    if (size < block_size) return plain::find_byte(text, size, c);
    const Block wanted = all(c);
    std::size_t i = 0;
    for (; i + 4 * block_size <= size; i += 4 * block_size) {
        const Block found0 = _mm_cmpeq_epi8(load(text + i), wanted);
        const Block found1 = _mm_cmpeq_epi8(load(text + i + block_size), wanted);
        const Block found2 = _mm_cmpeq_epi8(load(text + i + 2 * block_size), wanted);
        const Block found3 = _mm_cmpeq_epi8(load(text + i + 3 * block_size), wanted);
        const Block any = _mm_or_si128(_mm_or_si128(found0, found1), _mm_or_si128(found2, found3));
        if (_mm_movemask_epi8(any) != 0) break;
    }
    for (; i + block_size <= size; i += block_size) {
        if (const unsigned bits = equal_bits(load(text + i), wanted)) return i + lowest_bit(bits);
    }
    const std::size_t last = size - block_size;
    const unsigned bits = equal_bits(load(text + last), wanted);
    return bits != 0 ? last + lowest_bit(bits) : size;
}

// Whole blocks of memory hold the text, and of those around it a few bytes too.
#ifdef __GNUC__
#define UTIL_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address")))
#else
#define UTIL_READS_WHOLE_BLOCKS
#endif

// 0 where the byte of the block at an address that is a multiple of 16 is c or NUL.
UTIL_READS_WHOLE_BLOCKS inline Block differing(const char* aligned, Block c) {
    const Block block = _mm_load_si128(reinterpret_cast<const Block*>(aligned));
    return _mm_min_epu8(block, _mm_xor_si128(block, c));
}

// Blocks at multiples of 16 never reach into a page that the text does not, so reading beyond its
// NUL, or before its start, is harmless; such bytes are shifted out, or lie behind the byte found.
// Only the sanitizers' notion of bounds has to be told. Four blocks at a time begin at a multiple
// of 64, for the same reason.
UTIL_READS_WHOLE_BLOCKS inline std::size_t find_byte_or_nul(const char* text, char c) {
    const Block wanted = all(c);
    const Block nul = _mm_setzero_si128();
    const auto place = static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(text) % block_size);
    const char* at = text - place;
    const unsigned in_first = equal_bits(differing(at, wanted), nul) >> place;
    if (in_first != 0) return lowest_bit(in_first);
    for (at += block_size;; at += block_size) {
        while (reinterpret_cast<std::uintptr_t>(at) % (4 * block_size) == 0) {
            const Block least = _mm_min_epu8(
                _mm_min_epu8(differing(at, wanted), differing(at + block_size, wanted)),
                _mm_min_epu8(differing(at + 2 * block_size, wanted),
                             differing(at + 3 * block_size, wanted)));
            if (equal_bits(least, nul) != 0) break;
            at += 4 * block_size;
        }
        if (const unsigned bits = equal_bits(differing(at, wanted), nul)) {
            return static_cast<std::size_t>(at - text) + lowest_bit(bits);
        }
    }
}

}  // namespace sse2
#endif

// The number of bytes before the closing NUL.
inline std::size_t text_length(const char* text) {
    return kernels::find_byte_or_nul(text, '\0');
}

}  // namespace util

#endif
