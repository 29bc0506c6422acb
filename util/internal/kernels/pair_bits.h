// Finds two bytes at a fixed distance from each other, as a bitmap.
#ifndef UTIL_INTERNAL_KERNELS_PAIR_BITS_H
#define UTIL_INTERNAL_KERNELS_PAIR_BITS_H

#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

// Two bytes, the second `distance` bytes after the first.
class BytePair {
  public:
    BytePair(char first, char second, std::size_t distance)
        : m_first(first), m_second(second), m_distance(distance) {}

    // Bit i is set if text[i] is the first byte and text[i + distance] the second. All other bits
    // are 0. Looks at `places` values of i, at most chunk_size.
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

// Reads nothing after the second byte of the last place: the last block may overlap the one before
// it instead.
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
