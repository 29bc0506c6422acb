// Comparing a text with a pattern.
#ifndef UTIL_TESTS_SUPPORT_MATCHES_H
#define UTIL_TESTS_SUPPORT_MATCHES_H

#include <string_view>

namespace util_test {

// Whether `text` is `pattern`, in which "..." stands for anything.
inline bool matches(std::string_view text, std::string_view pattern) {
    for (bool anywhere = false;; anywhere = true) {
        const std::size_t end = pattern.find("...");
        const std::string_view piece = pattern.substr(0, end);
        const bool is_last = end == std::string_view::npos;
        const std::size_t at = is_last && anywhere ? text.rfind(piece) : text.find(piece);
        if (at == std::string_view::npos || (at != 0 && !anywhere)) return false;
        text.remove_prefix(at + piece.size());
        if (is_last) return text.empty();
        pattern.remove_prefix(end + 3);
    }
}

}  // namespace util_test

#endif
