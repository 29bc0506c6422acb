// Not installed. The places of a text where a byte is one of a few.
#ifndef UTIL_INTERNAL_MARKS_H
#define UTIL_INTERNAL_MARKS_H

#include <cstdint>
#include <string_view>

#include "util/internal/kernels/member_bits.h"

namespace util {

// Can be gone through more than once, to count before anything is allocated; most texts are short,
// so a single line is looked at only once. The text and the bytes outlive it.
class Marks {
  public:
    Marks(std::string_view text, const kernels::Members& bytes) : m_text(text), m_bytes(bytes) {
        if (is_line()) m_line = bytes.bits(text.data(), text.size());
    }

    // Calls take(begin, size, bits) for each line of 64 bytes, of which the last may have fewer:
    // bit i is set when its byte i is marked.
    template <typename Take>
    void for_each_line(Take take) const {
        if (is_line()) {
            take(std::size_t{0}, m_text.size(), m_line);
        } else {
            m_bytes.for_each_line(m_text, take);
        }
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
    bool is_line() const { return !m_text.empty() && m_text.size() <= line_size; }

    std::string_view m_text;
    const kernels::Members& m_bytes;
    std::uint64_t m_line = 0;
};

}  // namespace util

#endif
