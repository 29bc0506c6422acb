#include <cstring>

#include "util/text/byte_string.h"
#include "util/text/find_text.h"
#include "util/text/text_writer.h"

namespace {

std::string all_replaced_in_long(std::string_view text, std::string_view what,
                                 std::string_view with) {
    util::Places places(text.size());
    util::add_occurrences(text, what, places);
    if (places.empty()) return std::string(text);
    const std::size_t count = places.count();
    // Subtracts before it adds, so that no intermediate value overflows.
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

// The result of a short text is built on the stack. It is longest if each byte is replaced.
std::string all_replaced(std::string_view text, std::string_view what, std::string_view with) {
    char space[16 * util::chunk_size];
    if (text.size() > util::chunk_size || text.size() * with.size() > sizeof space)
        return all_replaced_in_long(text, what, with);
    char* end = space;
    const auto put = [&](std::string_view piece) {
        std::memcpy(end, piece.data(), piece.size());
        end += piece.size();
    };
    std::size_t begin = 0;
    util::each_occurrence(text, what, 0, [&](std::size_t at) {
        put(text.substr(begin, at - begin));
        put(with);
        begin = at + what.size();
        return true;
    });
    put(text.substr(begin));
    return std::string(space, end);
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
    // Replacing every occurrence of the empty text would never end.
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
