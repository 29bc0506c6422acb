// Not installed. The places of a text where a byte is one of a few.
#ifndef UTIL_INTERNAL_MARKS_H
#define UTIL_INTERNAL_MARKS_H

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "util/internal/kernels/member_bits.h"

namespace util {

// Can be gone through more than once, to count before anything is allocated; most texts are short,
// so the first line is looked at only once. The text and the bytes outlive it.
class Marks {
  public:
    Marks(std::string_view text, const kernels::Members& bytes)
        : m_text(text), m_bytes(bytes), m_first(text.empty() ? 0 : bits_of(0)) {}

    // Calls take(begin, size, bits) for each line of 64 bytes, of which the last may have fewer:
    // bit i is set when its byte i is marked.
    template <typename Take>
    void for_each_line(Take take) const {
        for (std::size_t begin = 0; begin < m_text.size(); begin += line_size)
            take(begin, size_at(begin), begin == 0 ? m_first : bits_of(begin));
    }

    // Calls take(position) for each mark, from left to right.
    template <typename Take>
    void for_each(Take take) const {
        for_each_line([&](std::size_t begin, std::size_t, std::uint64_t bits) {
            for (; bits != 0; bits &= bits - 1)
                take(begin + lowest_bit(bits));
        });
    }

  private:
    std::size_t size_at(std::size_t begin) const {
        return std::min(line_size, m_text.size() - begin);
    }
    std::uint64_t bits_of(std::size_t begin) const {
        return m_bytes.bits(m_text.data() + begin, size_at(begin));
    }

    std::string_view m_text;
    const kernels::Members& m_bytes;
    std::uint64_t m_first;
};

}  // namespace util

#endif
