#include <vector>

#include "util/internal/find_text.h"
#include "util/internal/text_writer.h"
#include "util/text/byte_string.h"

namespace {

// The text with another in place of what stands, size bytes long, at each of the positions.
std::string replaced(std::string_view text, const std::vector<std::size_t>& positions,
                     std::size_t size, std::string_view with) {
    // First what goes and then what comes, so that no step is negative.
    util::TextWriter result(text.size() - positions.size() * size + positions.size() * with.size());
    std::size_t begin = 0;
    for (const std::size_t at : positions) {
        result.put(text.substr(begin), at - begin);
        result.put(with);
        begin = at + size;
    }
    result.put(text.substr(begin));
    return result.take();
}

}  // namespace

String& String::replace(const char* from, const char* to, scopeType scope) {
    const bool only_first = scope == SCOPE_FIRST;
    const std::string_view what = util::c_text(from);
    // The empty text occurs without end at one place; replacing it everywhere has no result.
    if (!from || (what.empty() && !only_first)) return *this;

    const std::string_view visible = util::up_to_nul(view());
    std::vector<std::size_t> positions;
    if (!only_first) {
        positions = util::find_all(visible, what);
    } else if (const std::size_t at = util::find_text(visible, what); at != npos) {
        positions.push_back(at);
    }
    m_text = replaced(visible, positions, what.size(), util::c_text(to));
    return *this;
}

String String::replace(const char* from, const char* to) const {
    const std::string_view what = util::c_text(from);
    if (what.empty()) return *this;
    const std::string_view visible = util::up_to_nul(view());
    return replaced(visible, util::find_all(visible, what), what.size(), util::c_text(to));
}
