// Decimal text to number as the runtime's atoi reads it, in the "C" locale whatever
// the host program has set.
#ifndef UTIL_INTERNAL_DECIMAL_H
#define UTIL_INTERNAL_DECIMAL_H

#include <cstdint>

#include "util/internal/ascii.h"

namespace util {

// Takes a text byte by byte and keeps only its value, so that a text of any length costs nothing.
// Leading white space, an optional sign, then digits; 0 when there are none. What follows the first
// other byte does not count. Like the runtime's, it wraps modulo 2^32: "99999999999" is 1215752191.
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
