#include "util/internal/find_text.h"

#include <vector>

namespace util {

namespace {

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

std::size_t find_repetitive(std::string_view text, std::string_view what, std::size_t pos) {
    const std::vector<std::size_t> borders = borders_of(what);
    std::size_t matched = 0;
    for (std::size_t i = pos; i < text.size(); ++i) {
        while (matched > 0 && text[i] != what[matched])
            matched = borders[matched];
        if (text[i] == what[matched]) ++matched;
        if (matched == what.size()) return i + 1 - matched;
    }
    return std::string_view::npos;
}

std::size_t common_length(std::string_view a, std::string_view b) {
    std::size_t length = 0;
    while (length < a.size() && length < b.size() && a[length] == b[length])
        ++length;
    return length;
}

}  // namespace

std::size_t find_text(std::string_view text, std::string_view what, std::size_t pos) {
    if (what.empty()) return pos <= text.size() ? pos : std::string_view::npos;
    // Plain comparison is fastest where few places match in part; once it has cost more than a pass
    // over the text so far, the texts are of the other kind.
    constexpr std::size_t allowance = 32;
    std::size_t wasted = 0;
    std::size_t at = pos;
    while ((at = text.find(what.front(), at)) != std::string_view::npos) {
        const std::size_t common = common_length(text.substr(at), what);
        if (common == what.size()) return at;
        wasted += common;
        ++at;
        if (wasted > at - pos + allowance) return find_repetitive(text, what, at);
    }
    return std::string_view::npos;
}

}  // namespace util
