#include <bitset>
#include <new>
#include <stdexcept>

#include "util/internal/marks.h"
#include "util/internal/occurrences.h"
#include "util/text/byte_string.h"

namespace {

struct FieldCounts {
    std::size_t all = 1;
    std::size_t filled = 0;
};

FieldCounts count_fields(const util::Marks& separators) {
    FieldCounts counts;
    std::uint64_t after_separator = 1;
    separators.for_each_line([&](std::size_t, std::size_t size, std::uint64_t bits) {
        const std::uint64_t line =
            size == util::line_size ? ~std::uint64_t{0} : (std::uint64_t{1} << size) - 1;
        const std::uint64_t starts = ~bits & (bits << 1 | after_separator) & line;
        after_separator = bits >> (util::line_size - 1);
        counts.all += std::bitset<util::line_size>(bits).count();
        counts.filled += std::bitset<util::line_size>(starts).count();
    });
    return counts;
}

}  // namespace

std::vector<String> String::split(const String& separators, bool skipEmpty) const {
    std::vector<String> fields;
    if (empty()) return fields;

    // Counting first lets the list be allocated once, at its size.
    const util::kernels::Members set(separators.view());
    const util::Marks marks(view(), set);
    const FieldCounts counts = count_fields(marks);
    // The number of empty fields after the last one filled is then not defined by any text; the
    // count has always wrapped round and exhausted memory. Same error, without the wait.
    if (counts.filled == 0 && !skipEmpty) throw std::bad_alloc();

    const std::size_t count = skipEmpty ? counts.filled : counts.all;
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
    const util::Occurrences tags(view(), tag.view());
    pieces.reserve(tags.count() + 1);
    std::size_t begin = 0;
    tags.for_each([&](std::size_t at) {
        pieces.emplace_back(m_text.data() + begin, at - begin);
        begin = at + tag.size();
    });
    if (begin < size()) pieces.emplace_back(m_text.data() + begin, size() - begin);
    return pieces;
}
