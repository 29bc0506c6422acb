// A set of byte values, for scanning text for any of them.
#ifndef UTIL_INTERNAL_BYTE_SET_H
#define UTIL_INTERNAL_BYTE_SET_H

#include <bitset>
#include <string_view>

namespace util {

class ByteSet {
  public:
    explicit ByteSet(std::string_view members) {
        for (const char c : members)
            add(c);
    }
    void add(char c) { m_members.set(static_cast<unsigned char>(c)); }
    bool has(char c) const { return m_members[static_cast<unsigned char>(c)]; }

  private:
    std::bitset<256> m_members;
};

}  // namespace util

#endif
