// Not installed. Finding two bytes that stand at a distance, as bits.
#ifndef UTIL_INTERNAL_KERNELS_PAIR_BITS_H
#define UTIL_INTERNAL_KERNELS_PAIR_BITS_H

#include "util/internal/kernels/kernels.h"

namespace util {

struct BytePair {
    char first, last;
    std::size_t distance;  // from first to last
};

namespace plain {

// Bit i is set when pair.first stands at text[i] and pair.last at its distance from there; the
// others are not. At most line_size places are looked at.
inline std::uint64_t pair_bits(const char* text, std::size_t places, BytePair pair) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < places; ++i) {
        const bool found = text[i] == pair.first && text[i + pair.distance] == pair.last;
        bits |= std::uint64_t{found} << i;
    }
    return bits;
}

}  // namespace plain

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// The blocks that are compared with the last byte end where the last place's does, so nothing
// beyond is read. As elsewhere the last block may overlap the one before it.
[[gnu::always_inline]] inline std::uint64_t pair_bits(const char* text, std::size_t places,
                                                      BytePair pair) {
    if (places < block_size) return plain::pair_bits(text, places, pair);
    const Block first = all(pair.first);
    const Block last = all(pair.last);
    const auto compare = [&](const char* at) {
        return _mm_and_si128(_mm_cmpeq_epi8(load(at), first),
                             _mm_cmpeq_epi8(load(at + pair.distance), last));
    };
    if (places == line_size) return line_bits(text, compare);
    const std::size_t end = places - block_size;
    std::uint64_t bits = std::uint64_t{block_bits(compare(text + end))} << end;
    for (std::size_t i = 0; i < end; i += block_size)
        bits |= std::uint64_t{block_bits(compare(text + i))} << i;
    return bits;
}

}  // namespace sse2
#endif

}  // namespace util

#endif
