// Not installed. Finding any byte of a set, as bits.
#ifndef UTIL_INTERNAL_KERNELS_MEMBER_BITS_H
#define UTIL_INTERNAL_KERNELS_MEMBER_BITS_H

#include <algorithm>
#include <cstring>
#include <string_view>

#include "util/internal/byte_set.h"
#include "util/internal/kernels/kernels.h"

namespace util {

namespace plain {

class Members {
  public:
    explicit Members(std::string_view members) : m_set(members) {}

    // Bit i is set when text[i] is a member; the others are not. One byte at least and line_size
    // at most.
    std::uint64_t bits(const char* text, std::size_t size) const {
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < size; ++i)
            bits |= std::uint64_t{m_set.has(text[i])} << i;
        return bits;
    }

  private:
    ByteSet m_set;
};

}  // namespace plain

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// Each member is compared with all bytes, so this pays for a few of them; the table of the plain
// form serves for many. Setting a bit twice changes nothing: unused places of the few hold the
// first member again, and the last block may overlap the one before it.
class Members {
  public:
    explicit Members(std::string_view members)
        : m_count(members.size()), m_plain(m_count > few ? members : "") {
        for (std::size_t i = 0; i < few && m_count > 0; ++i)
            m_blocks[i] = all(members[i < m_count ? i : 0]);
    }

    std::uint64_t bits(const char* text, std::size_t size) const {
        if (m_count == 1) {
            return bits(text, size, [this](Block block) { return equal(block, 0); });
        }
        if (m_count == 0 || m_count > few) return m_plain.bits(text, size);
        return bits(text, size, [this](Block block) {
            const Block some = _mm_or_si128(equal(block, 0), equal(block, 1));
            const Block others = _mm_or_si128(equal(block, 2), equal(block, 3));
            return _mm_or_si128(_mm_or_si128(some, others), equal(block, 4));
        });
    }

  private:
    static constexpr std::size_t few = 5;

    Block equal(Block block, std::size_t i) const { return _mm_cmpeq_epi8(block, m_blocks[i]); }

    template <typename Compare>
    [[gnu::always_inline]] std::uint64_t bits(const char* text, std::size_t size,
                                              Compare compare) const {
        const auto at = [&](const char* from) { return compare(load(from)); };
        if (size == line_size) return line_bits(text, at);
        if (size < block_size) {
            char block[block_size] = {};
            std::memcpy(block, text, size);
            return block_bits(at(block)) & ((1u << size) - 1);
        }
        const std::size_t last = size - block_size;
        std::uint64_t bits = std::uint64_t{block_bits(at(text + last))} << last;
        for (std::size_t i = 0; i < last; i += block_size)
            bits |= std::uint64_t{block_bits(at(text + i))} << i;
        return bits;
    }

    std::size_t m_count;
    plain::Members m_plain;
    Block m_blocks[few];
};

}  // namespace sse2
#endif

}  // namespace util

#endif
