// The records of XrFile in binary mode. A number is its decimal digits and a zero byte. A text is
// its length plus 1 as such a number, then its bytes and a zero byte.
#ifndef UTIL_FILES_RECORD_H
#define UTIL_FILES_RECORD_H

#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>

namespace util {

// Encodes a number.
class NumberRecord {
  public:
    explicit NumberRecord(int value) {
        char* const end = std::to_chars(m_bytes, m_bytes + sizeof m_bytes - 1, value).ptr;
        *end = '\0';
        m_size = static_cast<std::uint64_t>(end - m_bytes) + 1;
    }

    const char* data() const { return m_bytes; }
    std::uint64_t size() const { return m_size; }

  private:
    char m_bytes[16];
    std::uint64_t m_size;
};

// Encodes a text as one block, because a record is written in one transfer. A record of more than
// 256 bytes needs memory: the constructor then raises std::bad_alloc.
class TextRecord {
  public:
    TextRecord(const char* text, std::uint64_t size) {
        const NumberRecord length(static_cast<int>(size + 1));
        m_size = length.size() + size + 1;
        if (m_size > sizeof m_short) {
            m_long.reset(new char[m_size]);
            m_bytes = m_long.get();
        }
        std::memcpy(m_bytes, length.data(), length.size());
        std::memcpy(m_bytes + length.size(), text, size);
        m_bytes[m_size - 1] = '\0';
    }
    TextRecord(const TextRecord&) = delete;
    TextRecord& operator=(const TextRecord&) = delete;

    const char* data() const { return m_bytes; }
    std::uint64_t size() const { return m_size; }

  private:
    char m_short[256];
    std::unique_ptr<char[]> m_long;
    char* m_bytes = m_short;
    std::uint64_t m_size;
};

}  // namespace util

#endif
