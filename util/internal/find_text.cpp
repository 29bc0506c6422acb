#include "util/internal/find_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "util/internal/kernels/pair_bits.h"

namespace util {

namespace {

constexpr auto none = std::string_view::npos;

// For each length of a beginning of what: the longest shorter beginning that is also its end
// (Knuth, Morris and Pratt).
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

// As below, in the time of one pass over both whatever they are.
template <typename Take>
void each_in_repetitive(std::string_view text, std::string_view what, std::size_t pos, Take take) {
    const std::vector<std::size_t> borders = borders_of(what);
    std::size_t matched = 0;
    for (std::size_t i = pos; i < text.size(); ++i) {
        while (matched > 0 && text[i] != what[matched])
            matched = borders[matched];
        if (text[i] == what[matched]) ++matched;
        if (matched == what.size()) {
            if (!take(i + 1 - matched)) return;
            matched = 0;
        }
    }
}

template <typename Word>
bool same_word(const char* a, const char* b) {
    Word word_a, word_b;
    std::memcpy(&word_a, a, sizeof word_a);
    std::memcpy(&word_b, b, sizeof word_b);
    return word_a == word_b;
}

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

// Calls take(position) for what, which is not empty, wherever it occurs at or after pos and does
// not overlap the one before, for as long as take returns true.
template <typename Take>
void each_occurrence(std::string_view text, std::string_view what, std::size_t pos, Take take) {
    if (text.size() < what.size()) return;
    // Comparing the places where the first byte and the last fit is fastest where few of them match
    // in part; once it has cost more than a pass over the text so far, the texts are of the other
    // kind.
    constexpr std::size_t allowance = 32;
    std::size_t wasted = 0;
    const BytePair ends = {what.front(), what.back(), what.size() - 1};
    const std::size_t places = text.size() - ends.distance;
    std::size_t next = pos;  // where an occurrence may begin
    for (std::size_t line = pos; line < places; line += line_size) {
        const std::size_t size = std::min(line_size, places - line);
        std::uint64_t bits = kernels::pair_bits(text.data() + line, size, ends);
        for (; bits != 0; bits &= bits - 1) {
            const std::size_t at = line + lowest_bit(bits);
            if (at < next) continue;
            if (same_bytes(text.data() + at, what.data(), what.size())) {
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

}  // namespace

std::size_t find_text(std::string_view text, std::string_view what, std::size_t pos) {
    if (what.empty()) return pos <= text.size() ? pos : none;
    std::size_t found = none;
    each_occurrence(text, what, pos, [&](std::size_t at) {
        found = at;
        return false;
    });
    return found;
}

std::vector<std::size_t> find_all(std::string_view text, std::string_view what) {
    std::vector<std::size_t> found;
    each_occurrence(text, what, 0, [&](std::size_t at) {
        found.push_back(at);
        return true;
    });
    return found;
}

}  // namespace util
