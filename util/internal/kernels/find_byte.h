// Finding a byte: the runtime's own search goes byte by byte on Windows.
#ifndef UTIL_INTERNAL_KERNELS_FIND_BYTE_H
#define UTIL_INTERNAL_KERNELS_FIND_BYTE_H

#include <cstring>

#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

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

// Copies the text before its NUL to a space of `space` bytes. Returns its length, or space + 1 for
// any text that is longer than the space. May write to the rest of the space.
inline std::size_t copy_text(const char* text, char* to, std::size_t space) {
    std::size_t i = 0;
    for (; i < space && text[i] != '\0'; ++i)
        to[i] = text[i];
    return text[i] == '\0' ? i : space + 1;
}

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// Of each block only bytes before size are looked at, so the first equal byte is the result. What
// is left over after whole blocks is covered by the last block of the text: it overlaps bytes that
// were seen not to be c, which changes nothing.
inline std::size_t find_byte(const char* text, std::size_t size, char c) {
    if (size < block_size) return scalar::find_byte(text, size, c);
    const Block wanted = all(c);
    std::size_t i = 0;
    for (; i + chunk_size <= size; i += chunk_size) {
        const std::uint64_t bits =
            chunk_bits(text + i, [&](const char* at) { return _mm_cmpeq_epi8(load(at), wanted); });
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

// Blocks at multiples of 16, and chunks at multiples of 64, never reach into a page that the text
// does not, so reading beyond its NUL, or before its start, is harmless; such bytes are shifted
// out, or lie behind the byte found. Only the sanitizers' notion of bounds has to be told.
UTIL_READS_WHOLE_BLOCKS inline std::size_t find_byte_or_nul(const char* text, char c) {
    const Block wanted = all(c);
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    const char* at = text - address % block_size;
    const unsigned in_first = block_bits(ending(at, wanted)) >> (address % block_size);
    if (in_first != 0) return lowest_bit(in_first);
    at += block_size;
    for (; reinterpret_cast<std::uintptr_t>(at) % chunk_size != 0; at += block_size) {
        const unsigned bits = block_bits(ending(at, wanted));
        if (bits != 0) return static_cast<std::size_t>(at - text) + lowest_bit(bits);
    }
    for (;; at += chunk_size) {
        const auto bits = chunk_bits(at, [&](const char* p) { return ending(p, wanted); });
        if (bits != 0) return static_cast<std::size_t>(at - text) + lowest_bit(bits);
    }
}

UTIL_READS_WHOLE_BLOCKS inline Block load_near(const char* from) {
    return _mm_loadu_si128(reinterpret_cast<const Block*>(from));
}

// One look at each byte, where measuring first would take two. A block that does not reach into the
// next page may be read as those above; what is copied from behind the NUL is never asked for.
UTIL_READS_WHOLE_BLOCKS inline std::size_t copy_text(const char* text, char* to,
                                                     std::size_t space) {
    constexpr std::size_t page_size = 4096;
    const Block nuls = _mm_setzero_si128();
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    if (address % page_size > page_size - block_size || space < block_size)
        return scalar::copy_text(text, to, space);
    const auto nul_bits = [&](std::size_t at) UTIL_READS_WHOLE_BLOCKS {
        const Block block = load_near(text + at);
        store(to + at, block);
        return equal_bits(block, nuls);
    };
    if (const unsigned bits = nul_bits(0)) return lowest_bit(bits);
    // Then blocks up to a multiple of 64, of which the first may overlap the one before it, chunks
    // of 64 as far as they hold no NUL, and blocks again.
    std::size_t i = block_size - address % block_size;
    for (; (address + i) % chunk_size != 0 && i + block_size <= space; i += block_size) {
        if (const unsigned bits = nul_bits(i)) return i + lowest_bit(bits);
    }
    for (; i + chunk_size <= space; i += chunk_size) {
        const Block b0 = load_near(text + i);
        const Block b1 = load_near(text + i + block_size);
        const Block b2 = load_near(text + i + 2 * block_size);
        const Block b3 = load_near(text + i + 3 * block_size);
        const Block least = _mm_min_epu8(_mm_min_epu8(b0, b1), _mm_min_epu8(b2, b3));
        if (equal_bits(least, nuls) != 0) break;
        store(to + i, b0);
        store(to + i + block_size, b1);
        store(to + i + 2 * block_size, b2);
        store(to + i + 3 * block_size, b3);
    }
    for (; i + block_size <= space; i += block_size) {
        if (const unsigned bits = nul_bits(i)) return i + lowest_bit(bits);
    }
    return i + scalar::copy_text(text + i, to + i, space - i);
}

}  // namespace sse2
#endif

// The number of bytes before the closing NUL.
inline std::size_t text_length(const char* text) {
    return kernels::find_byte_or_nul(text, '\0');
}

}  // namespace util

#endif
