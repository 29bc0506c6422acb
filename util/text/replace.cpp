#include <utility>

#include "util/internal/find_text.h"
#include "util/text/byte_string.h"

String& String::replace(const char* from, const char* to, scopeType scope) {
    const bool only_first = scope == SCOPE_FIRST;
    const std::string_view what = util::view_of(from);
    // The empty text occurs without end at one place; replacing it everywhere has no result.
    if (!from || (what.empty() && !only_first)) return *this;

    const std::string_view visible = c_str();
    const std::string_view with = util::view_of(to);
    std::string result;
    result.reserve(visible.size());
    std::size_t begin = 0;
    for (std::size_t at; (at = util::find_text(visible, what, begin)) != npos;) {
        result.append(visible, begin, at - begin).append(with);
        begin = at + what.size();
        if (only_first) break;
    }
    result.append(visible, begin);
    m_text = std::move(result);
    return *this;
}

String String::replace(const char* from, const char* to) const {
    String result(*this);
    result.replace(from, to, SCOPE_ALL);
    return result;
}
