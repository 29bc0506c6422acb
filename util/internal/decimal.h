// Converts decimal text to a number like the runtime's atoi in the "C" locale. The locale of the
// host program does not matter.
#ifndef UTIL_INTERNAL_DECIMAL_H
#define UTIL_INTERNAL_DECIMAL_H

#include <cstdint>

#include "util/internal/ascii.h"

namespace util {

// Reads a text byte by byte and stores only its value, so it needs no buffer.
//
// Reads white space, an optional sign and digits. Ignores everything from the first other byte on.
// Without digits, the value is 0. Wraps modulo 2^32 like the runtime: "99999999999" is 1215752191.
class DecimalReader {
  public:
    void take(char c) {
        if (m_stage == leading && is_space(c)) return;
        if (m_stage == leading && (c == '-' || c == '+')) {
            m_negative = c == '-';
            m_stage = digits;
        } else if (m_stage != ended && is_digit(c)) {
            m_value = m_value * 10 + static_cast<std::uint32_t>(c - '0');
            m_stage = digits;
        } else {
            m_stage = ended;
        }
    }
    bool finished() const { return m_stage == ended; }
    std::int32_t value() const {
        return static_cast<std::int32_t>(m_negative ? 0 - m_value : m_value);
    }

  private:
    enum { leading, digits, ended } m_stage = leading;
    bool m_negative = false;
    std::uint32_t m_value = 0;
};

inline std::int32_t parse_int(const char* text) {
    DecimalReader reader;
    for (; *text && !reader.finished(); ++text)
        reader.take(*text);
    return reader.value();
}

}  // namespace util

#endif
