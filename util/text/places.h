// Not installed. A bitmap of positions in a text.
#ifndef UTIL_TEXT_PLACES_H
#define UTIL_TEXT_PLACES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "util/internal/kernels/member_bits.h"

namespace util {

// One pass finds the positions; then count, reserve, copy. Costs size/8 bytes, on the stack for
// texts of up to 4 KiB.
class Places {
  public:
    // None yet, in a text of this size. Both may raise std::bad_alloc.
    explicit Places(std::size_t text_size) : Places(text_size, unset) {
        std::fill_n(m_bits, m_lines, 0);
    }
    // The bytes of a set.
    Places(std::string_view text, const kernels::Members& set) : Places(text.size(), unset) {
        std::uint64_t* next = m_bits;
        set.for_each_line(text, [&](std::uint64_t bits) {
            m_empty = m_empty && bits == 0;
            *next++ = bits;
        });
    }
    Places(const Places&) = delete;
    Places& operator=(const Places&) = delete;

    void add(std::size_t place) {
        m_empty = false;
        m_bits[place / line_size] |= std::uint64_t{1} << place % line_size;
    }

    bool empty() const { return m_empty; }
    std::size_t count() const {
        std::size_t count = 0;
        for (std::size_t i = 0; i < m_lines; ++i) {
            if (m_bits[i] != 0) count += bit_count(m_bits[i]);
        }
        return count;
    }

    // As many lines of 64 bytes as the text has, the last of which may have fewer. Bits: the one of
    // the first byte is the lowest.
    std::size_t lines() const { return m_lines; }
    std::uint64_t line(std::size_t index) const { return m_bits[index]; }

    // Calls take(place) for each, from left to right.
    template <typename Take>
    void for_each(Take take) const {
        for (std::size_t i = 0; i < m_lines; ++i) {
            for (std::uint64_t bits = m_bits[i]; bits != 0; bits &= bits - 1)
                take(i * line_size + lowest_bit(bits));
        }
    }

  private:
    static constexpr std::size_t near_lines = 64;

    enum Unset { unset };  // the bits are to be written

    Places(std::size_t text_size, Unset)
        : m_lines((text_size + line_size - 1) / line_size),
          m_far(m_lines > near_lines ? new std::uint64_t[m_lines] : nullptr),
          m_bits(m_far ? m_far.get() : m_near) {}

    const std::size_t m_lines;
    bool m_empty = true;
    const std::unique_ptr<std::uint64_t[]> m_far;
    std::uint64_t* const m_bits;
    std::uint64_t m_near[near_lines];
};

}  // namespace util

#endif
