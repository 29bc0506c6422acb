#include <new>
#include <stdexcept>

#include "util/internal/kernels/member_bits.h"
#include "util/text/byte_string.h"
#include "util/text/find_text.h"
#include "util/text/places.h"

namespace {

// Returns the fields of a text that is not empty. `each_chunk` calls a function with the bits of
// the separators in each chunk of the text.
template <typename EachChunk>
std::vector<String> fields_of(std::string_view text, bool skip_empty, EachChunk each_chunk) {
    // Counting first: the list is allocated once, at its size.
    std::size_t count = 0;
    std::uint64_t last_bits = 0;
    std::uint64_t after_separator = 1;  // whether the chunk begins after one, or the text begins
    each_chunk([&](std::uint64_t bits) {
        const std::uint64_t ends = bits & ~(bits << 1 | after_separator);  // of fields not empty
        count += util::bit_count(skip_empty ? ends : bits);
        // NOLINTNEXTLINE: the bits of each chunk have been written
        after_separator = bits >> (util::chunk_size - 1);
        last_bits = bits;
    });
    if (skip_empty) {
        count += (last_bits >> (text.size() - 1) % util::chunk_size & 1) == 0;
    } else if (count++ == text.size()) {
        // A text of separators alone: the described count of its empty fields wraps around and
        // exhausts memory. Raises the same error without trying.
        throw std::bad_alloc();
    }
    std::vector<String> fields;
    if (count > fields.max_size()) throw std::length_error("vector<T> too long");
    fields.reserve(count);

    std::size_t chunk = 0;
    std::size_t begin = 0;
    const auto append = [&](std::size_t end) {
        if (end > begin || !skip_empty) fields.emplace_back(text.data() + begin, end - begin);
        begin = end + 1;
    };
    each_chunk([&](std::uint64_t bits) {
        for (; bits != 0; bits &= bits - 1)
            append(chunk + util::lowest_bit(bits));
        chunk += util::chunk_size;
    });
    append(text.size());
    return fields;
}

}  // namespace

std::vector<String> String::split(const String& separators, bool skipEmpty) const {
    if (empty()) return {};
    const util::kernels::Members set(separators.view());
    if (size() <= util::chunk_size) {
        std::uint64_t only_chunk = 0;
        set.for_each_chunk(view(), [&](std::uint64_t bits) { only_chunk = bits; });
        return fields_of(view(), skipEmpty, [=](auto take) { take(only_chunk); });
    }
    const util::Places places(view(), set);
    return fields_of(view(), skipEmpty, [&](auto take) { places.for_each_chunk(take); });
}

std::vector<String> String::split_by_tag(const String& tag) const {
    std::vector<String> pieces;
    if (empty()) return pieces;
    if (tag.empty()) return std::vector<String>(1, *this);
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
