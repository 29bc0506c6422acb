#include <vector>

#include "fuzz/fuzz.h"
#include "util/internal/kernels/change_case.h"
#include "util/internal/kernels/find_byte.h"
#include "util/internal/kernels/hash_words.h"
#include "util/internal/kernels/member_bits.h"
#include "util/internal/kernels/pair_bits.h"

namespace util_fuzz {
namespace {

using namespace util;

// Blocks of memory of exactly the text's size, so that a sanitizer sees a step beyond either end.
void check_sized(const std::vector<char>& text, char c) {
    require(kernels::find_byte(text.data(), text.size(), c) ==
                scalar::find_byte(text.data(), text.size(), c),
            "find_byte");
    for (const char first : {'a', 'A'}) {
        std::vector<char> changed = text, copied(text.size()), expected(text.size());
        const bool has_nul = scalar::change_case(expected.data(), text.size(), first, text.data());
        change_case(changed.data(), changed.size(), first);
        require(kernels::change_case(copied.data(), text.size(), first, text.data()) == has_nul,
                "NUL of change_case");
        require(changed == expected && copied == expected, "change_case");
    }
    const std::size_t words = text.size() / 4;
    require(kernels::hash_words(7, text.data(), words) == scalar::hash_words(7, text.data(), words),
            "hash_words");
}

template <typename Members>
std::vector<std::uint64_t> line_bits_of(const std::vector<char>& text, const std::string& set) {
    std::vector<std::uint64_t> lines;
    Members(set).for_each_chunk({text.data(), text.size()},
                                [&](std::uint64_t bits) { lines.push_back(bits); });
    return lines;
}

// Into spaces too small for the text, just as large, and larger; what lies behind them stays.
void check_copy(const char* text) {
    const std::size_t length = scalar::find_byte_or_nul(text, '\0');
    for (const std::size_t space : {std::size_t{0}, length / 2, length, length + 1, length + 80}) {
        std::string copy(space + chunk_size, '=');
        require(kernels::copy_text(text, copy.data(), space) == std::min(length, space + 1),
                "length of copy_text");
        require(copy.substr(space) == std::string(chunk_size, '='), "space of copy_text");
        if (length <= space) require(copy.compare(0, length, text) == 0, "copy_text");
    }
}

// The bits of up to a line of the text, for a set of bytes and for two at a distance.
void check_bits(const std::vector<char>& text, const std::string& set) {
    if (text.empty()) return;
    require(line_bits_of<kernels::Members>(text, set) == line_bits_of<scalar::Members>(text, set),
            "Members of each line");
    for (const std::size_t distance : {std::size_t{0}, std::size_t{1}, set.size()}) {
        if (set.empty() || text.size() <= distance) continue;
        const std::size_t places = std::min(text.size() - distance, chunk_size);
        const kernels::BytePair pair(set.front(), set.back(), distance);
        const scalar::BytePair expected(set.front(), set.back(), distance);
        require(pair.bits(text.data(), places) == expected.bits(text.data(), places), "BytePair");
    }
}

}  // namespace

// Each kernel against its plain form, with every length of what is left over after whole blocks;
// and from every address, for those that read whole blocks of memory.
void kernels(std::string_view input) {
    Parameters parameters(input);
    const std::string set = parameters.short_text();
    const std::string text = parameters.rest();
    const char c = set.empty() ? '\0' : set.front();

    for (std::size_t cut = 0; cut <= 16 && cut <= text.size(); ++cut) {
        const std::vector<char> beginning(text.begin(), text.end() - static_cast<long>(cut));
        check_sized(beginning, c);
        check_bits(beginning, set);
    }
    const std::vector<char> few(text.begin(), text.begin() + static_cast<long>(text.size() % 80));
    check_sized(few, c);
    check_bits(few, set);
    for (std::size_t begin = 0; begin <= text.size() && begin <= 64; ++begin) {
        const char* const rest = text.c_str() + begin;
        require(util::kernels::find_byte_or_nul(rest, c) == scalar::find_byte_or_nul(rest, c),
                "find_byte_or_nul");
        require(text_length(rest) == scalar::find_byte_or_nul(rest, '\0'), "text_length");
        check_copy(rest);
    }
}

}  // namespace util_fuzz
