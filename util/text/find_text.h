// Searches a text for a byte, and for another text in linear time.
#ifndef UTIL_TEXT_FIND_TEXT_H
#define UTIL_TEXT_FIND_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "util/internal/kernels/find_byte.h"
#include "util/internal/kernels/pair_bits.h"
#include "util/text/places.h"

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

// For each prefix of `what`: the length of its longest border, a shorter prefix that is also its
// suffix (Knuth, Morris and Pratt).
std::vector<std::size_t> borders_of(std::string_view what);

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

// A text to compare others with. The first eight bytes are compared as one number: most texts are
// shorter, and a call of memcmp takes longer than their comparison.
class Needle {
  public:
    explicit Needle(std::string_view text) : m_text(text), m_word(first_word(text)) {
        if (text.size() < sizeof m_mask) m_mask = (std::uint64_t{1} << 8 * text.size()) - 1;
    }

    // Returns whether `there` begins with this text. `there` is at least as long.
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

// As each_occurrence, in one pass over both texts whatever they contain. Maps the bytes of `text`
// before it compares them.
template <typename Take, typename Map>
void each_in_repetitive(std::string_view text, std::string_view what, std::size_t pos, Take take,
                        Map map) {
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

// Calls take(position) for each occurrence of `what` at or after `pos` that does not overlap the
// one before. Stops when `take` returns false. `what` is not empty.
template <typename Take>
void each_occurrence(std::string_view text, std::string_view what, std::size_t pos, Take take) {
    if (text.size() < what.size()) return;
    // Compares only where the first and the last byte match. That is fastest while few of these
    // places match in part. When the comparisons have taken longer than one pass over the text so
    // far, the search that is linear for all texts takes over.
    constexpr std::size_t allowance = 32;
    const Needle needle(what);
    std::size_t wasted = 0;
    const kernels::BytePair ends(what.front(), what.back(), what.size() - 1);
    const std::size_t places = text.size() - (what.size() - 1);
    std::size_t next = pos;  // where an occurrence may begin
    for (std::size_t chunk = pos; chunk < places; chunk += chunk_size) {
        const std::size_t size = std::min(chunk_size, places - chunk);
        std::uint64_t bits = ends.bits(text.data() + chunk, size);
        for (; bits != 0; bits &= bits - 1) {
            const std::size_t at = chunk + lowest_bit(bits);
            if (at < next) continue;
            if (needle.begins(text.substr(at))) {
                if (!take(at)) return;
                next = at + what.size();
                continue;
            }
            const auto difference = std::mismatch(what.begin(), what.end(), text.begin() + at);
            wasted += static_cast<std::size_t>(difference.first - what.begin());
            if (wasted > at - pos + allowance)
                return each_in_repetitive(text, what, at + 1, take, [](char c) { return c; });
        }
    }
}

// Adds the positions of all occurrences of `what` that do not overlap the one before. `what` is not
// empty. May raise std::bad_alloc.
inline void add_occurrences(std::string_view text, std::string_view what, Places& places) {
    each_occurrence(text, what, 0, [&](std::size_t at) {
        places.add(at);
        return true;
    });
}

}  // namespace util

#endif
