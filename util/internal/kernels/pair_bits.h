// Finding two bytes that stand at a distance, as bits.
#ifndef UTIL_INTERNAL_KERNELS_PAIR_BITS_H
#define UTIL_INTERNAL_KERNELS_PAIR_BITS_H

#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

// Two bytes, of which the second stands at a distance behind the first.
class BytePair {
  public:
    BytePair(char first, char second, std::size_t distance)
        : m_first(first), m_second(second), m_distance(distance) {}

    // Bit i is set when the first byte stands at text[i] and the second at its distance from there;
    // the others are not. At most chunk_size places are looked at.
    std::uint64_t bits(const char* text, std::size_t places) const {
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < places; ++i) {
            const bool found = text[i] == m_first && text[i + m_distance] == m_second;
            bits |= std::uint64_t{found} << i;
        }
        return bits;
    }

  private:
    char m_first, m_second;
    std::size_t m_distance;
};

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// The blocks that are compared with the second byte end where the last place's does, so nothing
// beyond is read. As elsewhere the last block may overlap the one before it.
class BytePair {
  public:
    BytePair(char first, char second, std::size_t distance)
        : m_first(all(first)),
          m_second(all(second)),
          m_distance(distance),
          m_scalar(first, second, distance) {}

    [[gnu::always_inline]] std::uint64_t bits(const char* text, std::size_t places) const {
        if (places < block_size) return m_scalar.bits(text, places);
        const auto compare = [this](const char* at) {
            return _mm_and_si128(_mm_cmpeq_epi8(load(at), m_first),
                                 _mm_cmpeq_epi8(load(at + m_distance), m_second));
        };
        if (places == chunk_size) return chunk_bits(text, compare);
        const std::size_t end = places - block_size;
        std::uint64_t bits = std::uint64_t{block_bits(compare(text + end))} << end;
        for (std::size_t i = 0; i < end; i += block_size)
            bits |= std::uint64_t{block_bits(compare(text + i))} << i;
        return bits;
    }

  private:
    Block m_first, m_second;
    std::size_t m_distance;
    scalar::BytePair m_scalar;
};

}  // namespace sse2
#endif

}  // namespace util

#endif
