// Not installed. Places in a text, as one bit for each of its bytes.
#ifndef UTIL_INTERNAL_PLACES_H
#define UTIL_INTERNAL_PLACES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "util/internal/kernels/member_bits.h"

namespace util {

// Found once and gone through as often as wanted: to count before anything is allocated, and then
// to work. Bits take an eighth of the text however many are set; those of short texts lie on the
// stack.
class Places {
  public:
    // None yet, in a text of this size. Both may raise std::bad_alloc.
    explicit Places(std::size_t text_size) : m_lines((text_size + line_size - 1) / line_size) {
        if (m_lines > near_lines) m_far.reset(new std::uint64_t[m_lines]);
        std::fill_n(bits(), m_lines, 0);
    }
    // Those of the bytes of a set.
    Places(std::string_view text, const kernels::Members& set)
        : m_lines((text.size() + line_size - 1) / line_size) {
        if (m_lines > near_lines) m_far.reset(new std::uint64_t[m_lines]);
        std::uint64_t* line = bits();
        set.for_each_line(text, [&](std::uint64_t bits) {
            m_empty = m_empty && bits == 0;
            *line++ = bits;
        });
    }

    void add(std::size_t place) {
        m_empty = false;
        bits()[place / line_size] |= std::uint64_t{1} << place % line_size;
    }

    bool empty() const { return m_empty; }
    std::size_t count() const {
        std::size_t count = 0;
        for_each_line([&](std::size_t, std::uint64_t bits) { count += bit_count(bits); });
        return count;
    }

    // As many lines of 64 bytes as the text has, the last of which may have fewer. Bits: the one of
    // the first byte is the lowest.
    std::size_t lines() const { return m_lines; }
    std::uint64_t line(std::size_t line) const { return bits()[line]; }

    // Calls take(begin, bits) for each line with a place, where begin is that of its first byte.
    template <typename Take>
    void for_each_line(Take take) const {
        const std::uint64_t* const lines = bits();
        for (std::size_t i = 0; i < m_lines; ++i) {
            if (lines[i] != 0) take(i * line_size, lines[i]);
        }
    }

    // Calls take(place) for each, from left to right.
    template <typename Take>
    void for_each(Take take) const {
        for_each_line([&](std::size_t begin, std::uint64_t bits) {
            for (; bits != 0; bits &= bits - 1)
                take(begin + lowest_bit(bits));
        });
    }

  private:
    static constexpr std::size_t near_lines = 64;

    std::uint64_t* bits() { return m_far ? m_far.get() : m_near; }
    const std::uint64_t* bits() const { return m_far ? m_far.get() : m_near; }

    std::size_t m_lines;
    bool m_empty = true;
    std::unique_ptr<std::uint64_t[]> m_far;
    std::uint64_t m_near[near_lines];
};

}  // namespace util

#endif
