// Finds all bytes of a set, as a bitmap.
#ifndef UTIL_INTERNAL_KERNELS_MEMBER_BITS_H
#define UTIL_INTERNAL_KERNELS_MEMBER_BITS_H

#include <algorithm>
#include <string_view>

#include "util/internal/byte_set.h"
#include "util/internal/kernels/kernels.h"

namespace util {

namespace scalar {

class Members {
  public:
    explicit Members(std::string_view members) : m_set(members) {}

    // Calls take(bits) for each chunk of 64 bytes of the text. The last chunk may have fewer bytes.
    // Bit i is set if byte i of the chunk is a member. All other bits are 0.
    template <typename Take>
    void for_each_chunk(std::string_view text, Take take) const {
        for (std::size_t begin = 0; begin < text.size(); begin += chunk_size) {
            std::uint64_t bits = 0;
            for (std::size_t i = begin; i < std::min(text.size(), begin + chunk_size); ++i)
                bits |= std::uint64_t{m_set.has(text[i])} << (i - begin);
            take(bits);
        }
    }

  private:
    ByteSet m_set;
};

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// Compares all bytes with each member. The scalar form takes empty sets, sets of more than `many`
// members, and less than a block of text. Unused comparisons repeat the first member, and the last
// block may overlap the one before it: setting a bit twice changes nothing.
class Members {
  public:
    explicit Members(std::string_view members) : m_members(members) {}

    template <typename Take>
    void for_each_chunk(std::string_view text, Take take) const {
        const std::size_t size = m_members.size();
        if (size == 1) return for_each_chunk(text, take, Comparison<1>(m_members));
        if (size == 0 || size > many) return scalar::Members(m_members).for_each_chunk(text, take);
        if (size <= few) return for_each_chunk(text, take, Comparison<few>(m_members));
        for_each_chunk(text, take, Comparison<many>(m_members));
    }

  private:
    static constexpr std::size_t few = 5;
    static constexpr std::size_t many = 12;

    // Up to n members.
    template <std::size_t n>
    class Comparison {
      public:
        explicit Comparison(std::string_view members) {
#pragma GCC unroll 12
            for (std::size_t i = 0; i < n; ++i)
                m_values[i] = all(members[i < members.size() ? i : 0]);
        }
        Block operator()(const char* from) const {
            const Block block = load(from);
            Block found = _mm_cmpeq_epi8(block, m_values[0]);
#pragma GCC unroll 12
            for (std::size_t i = 1; i < n; ++i)
                found = _mm_or_si128(found, _mm_cmpeq_epi8(block, m_values[i]));
            return found;
        }

      private:
        Block m_values[n];
    };

    template <typename Take, typename Compare>
    void for_each_chunk(std::string_view text, Take take, const Compare& compare) const {
        for (; text.size() >= chunk_size; text.remove_prefix(chunk_size))
            take(chunk_bits(text.data(), compare));
        if (text.empty()) return;
        if (text.size() < block_size) return scalar::Members(m_members).for_each_chunk(text, take);
        const std::size_t last = text.size() - block_size;
        std::uint64_t bits = std::uint64_t{block_bits(compare(text.data() + last))} << last;
        for (std::size_t i = 0; i < last; i += block_size)
            bits |= std::uint64_t{block_bits(compare(text.data() + i))} << i;
        take(bits);
    }

    std::string_view m_members;  // outlives this object
};

}  // namespace sse2
#endif

}  // namespace util

#endif
