// Builds a text from many short pieces.
#ifndef UTIL_TEXT_TEXT_WRITER_H
#define UTIL_TEXT_TEXT_WRITER_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace util {

// Builds a text of a known size with one allocation and writes its memory once. Short pieces are
// gathered in a buffer first. There they are copied in blocks of a fixed size, which may extend
// beyond the piece: a copy of a variable size is a function call.
class TextWriter {
  public:
    static constexpr std::size_t block = 16;
    static constexpr std::size_t large_block = 4 * block;

    // May raise std::bad_alloc.
    explicit TextWriter(std::size_t size) {
        if (size > gathered_most - large_block) m_text.reserve(size);
    }

    // Appends the first `size` bytes of `text`. May read all of `text`.
    void put(std::string_view text, std::size_t size) {
        if (size <= block && block <= text.size()) {
            std::memcpy(space(block), text.data(), block);
            m_gathered += size;
        } else if (size <= large_block && large_block <= text.size()) {
            std::memcpy(space(large_block), text.data(), large_block);
            m_gathered += size;
        } else {
            put(text.substr(0, size));
        }
    }
    void put(std::string_view text);
    void put(char c) {
        *space(1) = c;
        ++m_gathered;
    }

    // Appends the first `size` bytes of a number, the lowest first.
    void put_word(std::uint64_t word, std::size_t size) {
        std::memcpy(space(sizeof word), &word, sizeof word);
        m_gathered += size;
    }

    // Returns the text. Nothing can be appended afterwards.
    std::string take() {
        flush();
        return std::move(m_text);
    }

  private:
    static constexpr std::size_t gathered_most = 2048;

    // Returns where the next `size` bytes go.
    char* space(std::size_t size) {
        if (m_gathered + size > gathered_most) flush();
        return m_buffer + m_gathered;
    }
    void flush();

    std::string m_text;
    std::size_t m_gathered = 0;
    char m_buffer[gathered_most];
};

// A piece that is appended many times. A short one is padded to the size of the writer's blocks.
class RepeatedPiece {
  public:
    explicit RepeatedPiece(std::string_view text) : m_wide(text), m_size(text.size()) {
        if (m_size > sizeof m_room) return;
        std::memcpy(m_room, text.data(), m_size);
        m_wide = {m_room, sizeof m_room};
    }
    RepeatedPiece(const RepeatedPiece&) = delete;
    RepeatedPiece& operator=(const RepeatedPiece&) = delete;

    void put_to(TextWriter& writer) const { writer.put(m_wide, m_size); }

  private:
    std::string_view m_wide;
    std::size_t m_size;
    char m_room[TextWriter::large_block] = {};
};

}  // namespace util

#endif
