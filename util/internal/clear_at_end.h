// Clears passwords before their memory is given back.
#ifndef UTIL_INTERNAL_CLEAR_AT_END_H
#define UTIL_INTERNAL_CLEAR_AT_END_H

#include "util/internal/windows.h"

namespace util {

// Zeroes all memory that a std::string or std::wstring owns at the end of the scope, in a way that
// the optimiser cannot drop. The string must not grow by reallocation before: a block that it has
// left is not cleared. Works on a string that was moved from; its small buffer may hold the text.
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
