// Clears passwords before their memory is freed.
#ifndef UTIL_INTERNAL_CLEAR_AT_END_H
#define UTIL_INTERNAL_CLEAR_AT_END_H

#include "util/internal/windows.h"

namespace util {

// Zeroes all memory of a std::string or std::wstring at the end of the scope. The optimiser cannot
// remove this. The string must not reallocate before: a block that it has freed is not cleared. A
// moved-from string is allowed. Its small buffer may still contain the text.
template <typename Text>
class ClearAtEnd {
  public:
    explicit ClearAtEnd(Text& text) : m_text(text) {}
    ~ClearAtEnd() {
        m_text.resize(m_text.capacity());  // allocates nothing
        SecureZeroMemory(m_text.data(), m_text.size() * sizeof(typename Text::value_type));
    }
    ClearAtEnd(const ClearAtEnd&) = delete;
    ClearAtEnd& operator=(const ClearAtEnd&) = delete;

  private:
    Text& m_text;
};

}  // namespace util

#endif
