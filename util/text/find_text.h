// Searches a text for a byte, and for another text in linear time.
#ifndef UTIL_TEXT_FIND_TEXT_H
#define UTIL_TEXT_FIND_TEXT_H

#include <cstddef>
#include <string_view>

#include "util/internal/kernels/find_byte.h"

namespace util {

// Returns the position of the first `c` in `text` at or after `pos`, or npos.
inline std::size_t find_byte(std::string_view text, char c, std::size_t pos = 0) {
    if (pos >= text.size()) return std::string_view::npos;
    const std::size_t at = pos + kernels::find_byte(text.data() + pos, text.size() - pos, c);
    return at < text.size() ? at : std::string_view::npos;
}

// Returns the bytes before the first NUL, as a C function sees the text.
inline std::string_view up_to_nul(std::string_view text) {
    return {text.data(), kernels::find_byte(text.data(), text.size(), '\0')};
}

// Returns the bytes of a C string before its NUL, and none for a null pointer.
inline std::string_view c_text(const char* text) {
    return text ? std::string_view(text, text_length(text)) : std::string_view("");
}

// Returns the position of the first `what` in `text` at or after `pos`, or npos. The empty text is
// found at every position up to the end. May raise std::bad_alloc.
//
// The standard library's find compares at every place where the first byte matches. For repetitive
// texts that takes time proportional to the product of both lengths.
std::size_t find_text(std::string_view text, std::string_view what, std::size_t pos = 0);

}  // namespace util

#endif
