// Not installed. Building a text out of many short pieces.
#ifndef UTIL_INTERNAL_TEXT_WRITER_H
#define UTIL_INTERNAL_TEXT_WRITER_H

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace util {

// A text of a size that is known beforehand, written from its beginning on: one allocation, and no
// call for a short piece, which is copied in blocks of a fixed size where there is room for that.
class TextWriter {
  public:
    static constexpr std::size_t block = 16;

    // May raise std::bad_alloc.
    explicit TextWriter(std::size_t size)
        : m_text(size, '\0'), m_to(m_text.data()), m_end(m_to + size) {}

    // The first size bytes of text, which may go on behind them: that is where a block may end.
    void put(std::string_view text, std::size_t size) {
        constexpr std::size_t most = 4 * block;
        const auto room = static_cast<std::size_t>(m_end - m_to);
        if (size <= most && size + block <= text.size() && size + block <= room) {
            for (std::size_t i = 0; i < size; i += block)
                std::memcpy(m_to + i, text.data() + i, block);
        } else {
            std::memcpy(m_to, text.data(), size);
        }
        m_to += size;
    }
    void put(std::string_view text) { put(text, text.size()); }
    void put(char c) { *m_to++ = c; }

    // What has been written; nothing can be put behind it.
    std::string take() {
        m_text.resize(static_cast<std::size_t>(m_to - m_text.data()));
        return std::move(m_text);
    }

  private:
    std::string m_text;
    char* m_to;
    char* m_end;
};

}  // namespace util

#endif
