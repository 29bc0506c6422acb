#include <new>
#include <stdexcept>

#include "util/internal/byte_set.h"
#include "util/internal/find_text.h"
#include "util/text/byte_string.h"

namespace {

// Calls take(begin, length) for each field between two separators, empty ones included.
template <typename Take>
void for_each_field(std::string_view text, const util::ByteSet& separators, Take take) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!separators.has(text[i])) continue;
        take(begin, i - begin);
        begin = i + 1;
    }
    take(begin, text.size() - begin);
}

}  // namespace

std::vector<String> String::split(const String& separators, bool skipEmpty) const {
    std::vector<String> fields;
    if (empty()) return fields;

    // Counting first lets the list be allocated once, at its size.
    const util::ByteSet set(separators.view());
    std::size_t total = 0;
    std::size_t filled = 0;
    for_each_field(view(), set, [&](std::size_t, std::size_t length) {
        ++total;
        if (length > 0) ++filled;
    });
    // The number of empty fields after the last one filled is then not defined by any text; the
    // count has always wrapped round and exhausted memory. Same error, without the wait.
    if (filled == 0 && !skipEmpty) throw std::bad_alloc();

    const std::size_t count = skipEmpty ? filled : total;
    if (count > fields.max_size()) throw std::length_error("vector<T> too long");
    fields.reserve(count);
    for_each_field(view(), set, [&](std::size_t begin, std::size_t length) {
        if (length > 0 || !skipEmpty) fields.emplace_back(m_text.data() + begin, length);
    });
    return fields;
}

std::vector<String> String::split_by_tag(const String& tag) const {
    std::vector<String> pieces;
    if (empty()) return pieces;
    if (tag.empty()) {
        pieces.push_back(*this);
        return pieces;
    }
    std::size_t begin = 0;
    for (std::size_t at; (at = util::find_text(view(), tag.view(), begin)) != std::string::npos;) {
        pieces.emplace_back(m_text.data() + begin, at - begin);
        begin = at + tag.size();
    }
    if (begin < size()) pieces.emplace_back(m_text.data() + begin, size() - begin);
    return pieces;
}
