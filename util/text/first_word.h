// Up to eight bytes of text at once.
#ifndef UTIL_TEXT_FIRST_WORD_H
#define UTIL_TEXT_FIRST_WORD_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace util {

// Returns the first bytes of `text` as a number, the first byte lowest, filled up with zeros. Reads
// a short text byte by byte, since memcpy of a variable size is a call.
inline std::uint64_t first_word(std::string_view text) {
    std::uint64_t word = 0;
    if (text.size() >= sizeof word) {
        std::memcpy(&word, text.data(), sizeof word);
    } else {
        for (std::size_t i = text.size(); i-- > 0;)
            word = word << 8 | static_cast<unsigned char>(text[i]);
    }
    return word;
}

}  // namespace util

#endif
