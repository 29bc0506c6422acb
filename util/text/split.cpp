#include <new>
#include <stdexcept>

#include "util/text/byte_string.h"
#include "util/text/find_text.h"

namespace {

// Returns the number of fields that are not empty. Each begins with a byte that is no separator,
// after a separator or at the start of the text.
std::size_t count_filled(const util::Places& separators, std::size_t size) {
    std::size_t filled = 0;
    std::uint64_t after_separator = 1;
    for (std::size_t i = 0; i < separators.chunks(); ++i) {
        const std::uint64_t bits = separators.chunk(i);
        std::uint64_t starts = ~bits & (bits << 1 | after_separator);
        // NOLINTNEXTLINE: each chunk has been written
        after_separator = bits >> (util::chunk_size - 1);
        const std::size_t rest = size - i * util::chunk_size;
        if (rest < util::chunk_size) starts &= (std::uint64_t{1} << rest) - 1;
        filled += util::bit_count(starts);
    }
    return filled;
}

}  // namespace

std::vector<String> String::split(const String& separators, bool skipEmpty) const {
    std::vector<String> fields;
    if (empty()) return fields;

    // Counting first: the list is allocated once, at its size.
    const util::Places marks(view(), util::kernels::Members(separators.view()));
    const std::size_t filled = count_filled(marks, size());
    // A text of separators alone: the described count of its empty fields wraps around and exhausts
    // memory. Raises the same error without trying.
    if (filled == 0 && !skipEmpty) throw std::bad_alloc();

    const std::size_t count = skipEmpty ? filled : marks.count() + 1;
    if (count > fields.max_size()) throw std::length_error("vector<T> too long");
    fields.reserve(count);
    std::size_t begin = 0;
    const auto append = [&](std::size_t end) {
        if (end > begin || !skipEmpty) fields.emplace_back(m_text.data() + begin, end - begin);
        begin = end + 1;
    };
    marks.for_each(append);
    append(size());
    return fields;
}

std::vector<String> String::split_by_tag(const String& tag) const {
    std::vector<String> pieces;
    if (empty()) return pieces;
    if (tag.empty()) {
        pieces.push_back(*this);
        return pieces;
    }
    util::Places tags(size());
    util::add_occurrences(view(), tag.view(), tags);
    pieces.reserve(tags.count() + 1);
    std::size_t begin = 0;
    tags.for_each([&](std::size_t at) {
        pieces.emplace_back(m_text.data() + begin, at - begin);
        begin = at + tag.size();
    });
    if (begin < size()) pieces.emplace_back(m_text.data() + begin, size() - begin);
    return pieces;
}
