#include "util/internal/find_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "util/internal/occurrences.h"

namespace util {

std::vector<std::size_t> borders_of(std::string_view what) {
    std::vector<std::size_t> borders(what.size() + 1);
    std::size_t border = 0;
    for (std::size_t i = 1; i < what.size(); ++i) {
        while (border > 0 && what[i] != what[border])
            border = borders[border];
        if (what[i] == what[border]) ++border;
        borders[i + 1] = border;
    }
    return borders;
}

namespace {

template <typename Word>
bool same_word(const char* a, const char* b) {
    Word word_a;
    Word word_b;
    std::memcpy(&word_a, a, sizeof word_a);
    std::memcpy(&word_b, b, sizeof word_b);
    return word_a == word_b;
}

}  // namespace

// Texts that are looked for are mostly short, and a call would cost more than their comparison: two
// words that may overlap hold up to twice their size.
bool same_bytes(const char* a, const char* b, std::size_t size) {
    if (size > 2 * sizeof(std::uint64_t)) return std::memcmp(a, b, size) == 0;
    if (size >= sizeof(std::uint64_t)) {
        const std::size_t last = size - sizeof(std::uint64_t);
        return same_word<std::uint64_t>(a, b) && same_word<std::uint64_t>(a + last, b + last);
    }
    if (size >= sizeof(std::uint32_t)) {
        const std::size_t last = size - sizeof(std::uint32_t);
        return same_word<std::uint32_t>(a, b) && same_word<std::uint32_t>(a + last, b + last);
    }
    return std::equal(a, a + size, b);
}

std::size_t common_length(const char* a, std::string_view b) {
    std::size_t length = 0;
    while (length < b.size() && a[length] == b[length])
        ++length;
    return length;
}

std::size_t find_text(std::string_view text, std::string_view what, std::size_t pos) {
    constexpr auto none = std::string_view::npos;
    if (what.empty()) return pos <= text.size() ? pos : none;
    std::size_t found = none;
    each_occurrence(text, what, pos, [&](std::size_t at) {
        found = at;
        return false;
    });
    return found;
}

}  // namespace util
