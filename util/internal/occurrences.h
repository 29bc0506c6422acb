// Not installed. All places where a text stands in another, in linear time whatever they are.
#ifndef UTIL_INTERNAL_OCCURRENCES_H
#define UTIL_INTERNAL_OCCURRENCES_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "util/internal/kernels/pair_bits.h"

namespace util {

// For each length of a beginning of what: the longest shorter beginning that is also its end
// (Knuth, Morris and Pratt).
std::vector<std::size_t> borders_of(std::string_view what);

// Whether the bytes are the same, and otherwise how many of the first ones are.
bool same_bytes(const char* a, const char* b, std::size_t size);
std::size_t common_length(const char* a, std::string_view b);

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

// The places of what, which must not be empty, from left to right, each behind the end of the one
// before it. Can be gone through more than once, to count before anything is allocated. The first
// places are kept; where there are more, which would take memory without bound, they are looked for
// again. May raise std::bad_alloc; the texts outlive it.
class Occurrences {
  public:
    Occurrences(std::string_view text, std::string_view what) : m_text(text), m_what(what) {
        each_occurrence(text, what, 0, [this](std::size_t at) {
            if (m_count < m_kept.size()) m_kept[m_count] = at;
            ++m_count;
            return true;
        });
    }

    std::size_t count() const { return m_count; }

    // Calls take(position) for each.
    template <typename Take>
    void for_each(Take take) const {
        if (m_count <= m_kept.size()) {
            std::for_each_n(m_kept.begin(), m_count, take);
            return;
        }
        each_occurrence(m_text, m_what, 0, [&](std::size_t at) {
            take(at);
            return true;
        });
    }

  private:
    std::string_view m_text, m_what;
    std::size_t m_count = 0;
    std::array<std::size_t, 256> m_kept;
};

}  // namespace util

#endif
