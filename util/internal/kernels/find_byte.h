// Finds a byte. The Windows runtime's own functions search byte by byte.
#ifndef UTIL_INTERNAL_KERNELS_FIND_BYTE_H
#define UTIL_INTERNAL_KERNELS_FIND_BYTE_H

#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

// Returns the number of bytes before the first `c`; `size` if there is none.
inline std::size_t find_byte(const char* text, std::size_t size, char c) {
    std::size_t i = 0;
    while (i < size && text[i] != c)
        ++i;
    return i;
}

// Returns the number of bytes before the first `c` or the closing NUL, whichever comes first.
inline std::size_t find_byte_or_nul(const char* text, char c) {
    std::size_t i = 0;
    while (text[i] != c && text[i] != '\0')
        ++i;
    return i;
}

// Copies a C string without its NUL to `to`, which has `space` bytes. Returns its length, or
// space + 1 for any longer text. May write to all of `space`.
inline std::size_t copy_text(const char* text, char* to, std::size_t space) {
    std::size_t i = 0;
    for (; i < space && text[i] != '\0'; ++i)
        to[i] = text[i];
    return text[i] == '\0' ? i : space + 1;
}

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// The bytes after the last whole block are covered by the last block_size bytes of the text. That
// block overlaps bytes that are known not to be `c`.
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

// The kernels below also read bytes outside the text, which may belong to other threads. They
// ignore those bytes, but sanitizers report the reads.
#define UTIL_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address", "thread")))

// Sets the bytes that are `c` or NUL, in the block at an address that is a multiple of 16.
UTIL_READS_WHOLE_BLOCKS inline Block ending(const char* aligned, Block c) {
    const Block block = _mm_load_si128(reinterpret_cast<const Block*>(aligned));
    return _mm_or_si128(_mm_cmpeq_epi8(block, c), _mm_cmpeq_epi8(block, _mm_setzero_si128()));
}

// Blocks at multiples of 16, and chunks at multiples of 64, lie within one page. Each that is read
// contains a byte of the text, so the page is mapped. Bytes before the text are shifted out. Bytes
// after its NUL come after the byte found.
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

// One pass. Measuring the text first would take two. As above, blocks are read only within pages of
// the text. Bytes copied from after its NUL are not part of the result.
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
    // Blocks up to a multiple of 64, of which the first may overlap the one before it. Then chunks
    // without a NUL, and blocks again.
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

// Returns the number of bytes before the closing NUL.
inline std::size_t text_length(const char* text) {
    return kernels::find_byte_or_nul(text, '\0');
}

}  // namespace util

#endif
