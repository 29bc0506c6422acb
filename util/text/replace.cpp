#include <utility>

#include "util/text/byte_string.h"

namespace {

// Calls take(position) for each occurrence of what, from the left and without overlap.
template <typename Take>
void for_each_occurrence(std::string_view text, std::string_view what, bool only_first, Take take) {
    for (std::size_t at = text.find(what); at != std::string_view::npos;
         at = text.find(what, at + what.size())) {
        take(at);
        if (only_first) return;
    }
}

}  // namespace

String& String::replace(const char* from, const char* to, scopeType scope) {
    const bool only_first = scope == SCOPE_FIRST;
    const std::string_view what = util::view_of(from);
    // The empty text occurs without end at one place; replacing it everywhere has no result.
    if (!from || (what.empty() && !only_first)) return *this;

    // Counting first lets the result be allocated once, at its size.
    const std::string_view visible = c_str();
    const std::string_view with = util::view_of(to);
    std::size_t count = 0;
    for_each_occurrence(visible, what, only_first, [&](std::size_t) { ++count; });

    std::string result;
    result.reserve(visible.size() - count * what.size() + count * with.size());
    std::size_t begin = 0;
    for_each_occurrence(visible, what, only_first, [&](std::size_t at) {
        result.append(visible, begin, at - begin).append(with);
        begin = at + what.size();
    });
    result.append(visible, begin);
    m_text = std::move(result);
    return *this;
}

String String::replace(const char* from, const char* to) const {
    String result(*this);
    result.replace(from, to, SCOPE_ALL);
    return result;
}
