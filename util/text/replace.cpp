#include "util/internal/find_text.h"
#include "util/internal/occurrences.h"
#include "util/internal/text_writer.h"
#include "util/text/byte_string.h"

namespace {

std::string all_replaced(std::string_view text, std::string_view what, std::string_view with) {
    util::Places places(text.size());
    util::add_occurrences(text, what, places);
    if (places.empty()) return std::string(text);
    const std::size_t count = places.count();
    // First what goes and then what comes, so that no step is negative.
    util::TextWriter result(text.size() - count * what.size() + count * with.size());
    const util::RepeatedPiece replacement(with);
    std::size_t begin = 0;
    places.for_each([&](std::size_t at) {
        result.put(text.substr(begin), at - begin);
        replacement.put_to(result);
        begin = at + what.size();
    });
    result.put(text.substr(begin));
    return result.take();
}

std::string first_replaced(std::string_view text, std::string_view what, std::string_view with) {
    const std::size_t at = util::find_text(text, what);
    if (at == std::string_view::npos) return std::string(text);
    std::string result;
    result.reserve(text.size() - what.size() + with.size());
    return result.append(text, 0, at).append(with).append(text, at + what.size());
}

}  // namespace

String& String::replace(const char* from, const char* to, scopeType scope) {
    const bool only_first = scope == SCOPE_FIRST;
    const std::string_view what = util::c_text(from);
    // The empty text occurs without end at one place; replacing it everywhere has no result.
    if (!from || (what.empty() && !only_first)) return *this;

    const std::string_view visible = util::up_to_nul(view());
    m_text = only_first ? first_replaced(visible, what, util::c_text(to))
                        : all_replaced(visible, what, util::c_text(to));
    return *this;
}

String String::replace(const char* from, const char* to) const {
    const std::string_view what = util::c_text(from);
    if (what.empty()) return *this;
    return all_replaced(util::up_to_nul(view()), what, util::c_text(to));
}
