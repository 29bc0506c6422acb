// Not installed. All places where a text stands in another, in linear time whatever they are.
#ifndef UTIL_TEXT_OCCURRENCES_H
#define UTIL_TEXT_OCCURRENCES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "util/internal/kernels/pair_bits.h"
#include "util/text/first_word.h"
#include "util/text/places.h"

namespace util {

// For each length of a beginning of what: the longest shorter beginning that is also its end
// (Knuth, Morris and Pratt).
std::vector<std::size_t> borders_of(std::string_view what);

// The number of bytes before the first difference of a, which is as long as b, and b.
std::size_t common_length(const char* a, std::string_view b);

// A text to compare others with. Those that are looked for are mostly short, and a call would cost
// more than their comparison: the first eight bytes are compared as one number.
class Needle {
  public:
    explicit Needle(std::string_view text) : m_text(text), m_word(first_word(text)) {
        if (text.size() < sizeof m_mask) m_mask = (std::uint64_t{1} << 8 * text.size()) - 1;
    }

    // Whether a text that is as long at least begins with it.
    bool begins(std::string_view there) const {
        if (((first_word(there) ^ m_word) & m_mask) != 0) return false;
        return m_text.size() <= sizeof m_word ||
               std::memcmp(there.data(), m_text.data(), m_text.size()) == 0;
    }

  private:
    std::string_view m_text;
    std::uint64_t m_word;
    std::uint64_t m_mask = ~std::uint64_t{0};  // of the bytes that it has
};

struct SameByte {
    char operator()(char c) const { return c; }
};

// As below, in one pass over both texts whatever they contain. Bytes of text are compared after
// `map`.
template <typename Take, typename Map = SameByte>
void each_in_repetitive(std::string_view text, std::string_view what, std::size_t pos, Take take,
                        Map map = Map()) {
    const std::vector<std::size_t> borders = borders_of(what);
    std::size_t matched = 0;
    for (std::size_t i = pos; i < text.size(); ++i) {
        const char c = map(text[i]);
        while (matched > 0 && c != what[matched])
            matched = borders[matched];
        if (c == what[matched]) ++matched;
        if (matched == what.size()) {
            if (!take(i + 1 - matched)) return;
            matched = 0;
        }
    }
}

// Calls take(position) for what, which is not empty, wherever it occurs at or after pos and does
// not overlap the one before, for as long as take returns true.
template <typename Take>
void each_occurrence(std::string_view text, std::string_view what, std::size_t pos, Take take) {
    if (text.size() < what.size()) return;
    // Comparing the places where the first byte and the last fit is fastest where few of them match
    // in part; once it has cost more than a pass over the text so far, the texts are of the other
    // kind.
    constexpr std::size_t allowance = 32;
    const Needle needle(what);
    std::size_t wasted = 0;
    const kernels::BytePair ends(what.front(), what.back(), what.size() - 1);
    const std::size_t places = text.size() - (what.size() - 1);
    std::size_t next = pos;  // where an occurrence may begin
    for (std::size_t line = pos; line < places; line += line_size) {
        const std::size_t size = std::min(line_size, places - line);
        std::uint64_t bits = ends.bits(text.data() + line, size);
        for (; bits != 0; bits &= bits - 1) {
            const std::size_t at = line + lowest_bit(bits);
            if (at < next) continue;
            if (needle.begins(text.substr(at))) {
                if (!take(at)) return;
                next = at + what.size();
                continue;
            }
            wasted += common_length(text.data() + at, what);
            if (wasted > at - pos + allowance) {
                return each_in_repetitive(text, what, at + 1, take);
            }
        }
    }
}

// Adds the places of a text where what, which is not empty, begins, each behind the end of the one
// before it. May raise std::bad_alloc.
inline void add_occurrences(std::string_view text, std::string_view what, Places& places) {
    each_occurrence(text, what, 0, [&](std::size_t at) {
        places.add(at);
        return true;
    });
}

}  // namespace util

#endif
