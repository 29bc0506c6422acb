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

// Of each block only bytes before size are looked at, so the first equal byte is the result. What
// is left over after whole blocks is covered by the last block of the text: it overlaps bytes that
// were seen not to be c, which changes nothing.
inline std::size_t find_byte(const char* text, std::size_t size, char c) {
    if (size < block_size) return plain::find_byte(text, size, c);
    const Block wanted = all(c);
    std::size_t i = 0;
    for (; i + line_size <= size; i += line_size) {
        const std::uint64_t bits =
            line_bits(text + i, [&](const char* at) { return _mm_cmpeq_epi8(load(at), wanted); });
        if (bits != 0) return i + lowest_bit(bits);
    }
    for (; i + block_size <= size; i += block_size) {
        const unsigned bits = equal_bits(load(text + i), wanted);
        if (bits != 0) return i + lowest_bit(bits);
    }
    const std::size_t last = size - block_size;
    const unsigned bits = equal_bits(load(text + last), wanted);
    return bits != 0 ? last + lowest_bit(bits) : size;
}

// A block of memory may hold bytes beside the text, which are nobody's or even another thread's.
#ifdef __GNUC__
#define UTIL_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address", "thread")))
#else
#define UTIL_READS_WHOLE_BLOCKS
#endif

// Set where the byte is c or NUL, in the block at an address that is a multiple of 16.
UTIL_READS_WHOLE_BLOCKS inline Block ending(const char* aligned, Block c) {
    const Block block = _mm_load_si128(reinterpret_cast<const Block*>(aligned));
    return _mm_or_si128(_mm_cmpeq_epi8(block, c), _mm_cmpeq_epi8(block, _mm_setzero_si128()));
}

// Blocks at multiples of 16, and lines at multiples of 64, never reach into a page that the text
// does not, so reading beyond its NUL, or before its start, is harmless; such bytes are shifted
// out, or lie behind the byte found. Only the sanitizers' notion of bounds has to be told.
UTIL_READS_WHOLE_BLOCKS inline std::size_t find_byte_or_nul(const char* text, char c) {
    const Block wanted = all(c);
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    const char* at = text - address % block_size;
    const unsigned in_first = block_bits(ending(at, wanted)) >> (address % block_size);
    if (in_first != 0) return lowest_bit(in_first);
    at += block_size;
    for (; reinterpret_cast<std::uintptr_t>(at) % line_size != 0; at += block_size) {
        const unsigned bits = block_bits(ending(at, wanted));
        if (bits != 0) return static_cast<std::size_t>(at - text) + lowest_bit(bits);
    }
    for (;; at += line_size) {
        const auto bits = line_bits(at, [&](const char* p) { return ending(p, wanted); });
        if (bits != 0) return static_cast<std::size_t>(at - text) + lowest_bit(bits);
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
