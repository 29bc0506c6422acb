// Not installed. Searching a text for a byte, and for another text in linear time, whatever they
// are.
#ifndef UTIL_TEXT_FIND_TEXT_H
#define UTIL_TEXT_FIND_TEXT_H

#include <cstddef>
#include <string_view>

#include "util/internal/kernels/find_byte.h"

namespace util {

// Position of the first c in text at or after pos, or npos.
inline std::size_t find_byte(std::string_view text, char c, std::size_t pos = 0) {
    if (pos >= text.size()) return std::string_view::npos;
    const std::size_t at = pos + kernels::find_byte(text.data() + pos, text.size() - pos, c);
    return at < text.size() ? at : std::string_view::npos;
}

// The bytes before the first NUL: what a C function would see of the text.
inline std::string_view up_to_nul(std::string_view text) {
    return {text.data(), kernels::find_byte(text.data(), text.size(), '\0')};
}

// The bytes of a C string before its NUL, and none of a null one.
inline std::string_view c_text(const char* text) {
    return text ? std::string_view(text, text_length(text)) : std::string_view("");
}

// Position of the first `what` in text at or after pos, or npos. The empty text is found at every
// position up to the end. May raise std::bad_alloc.
//
// The standard library's find compares anew at every place where the first byte fits, which takes
// the product of both lengths for texts that repeat themselves.
std::size_t find_text(std::string_view text, std::string_view what, std::size_t pos = 0);

}  // namespace util

#endif
