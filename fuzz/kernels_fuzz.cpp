#include <vector>

#include "fuzz/fuzz.h"
#include "util/internal/kernels/change_case.h"
#include "util/internal/kernels/find_byte.h"
#include "util/internal/kernels/hash_words.h"

namespace util_fuzz {
namespace {

using namespace util;

// Blocks of memory of exactly the text's size, so that a sanitizer sees a step beyond either end.
void check_sized(const std::vector<char>& text, char c) {
    require(kernels::find_byte(text.data(), text.size(), c) ==
                plain::find_byte(text.data(), text.size(), c),
            "find_byte");
    for (const char first : {'a', 'A'}) {
        std::vector<char> changed = text, expected = text;
        kernels::change_case(changed.data(), changed.size(), first);
        plain::change_case(expected.data(), expected.size(), first);
        require(changed == expected, "change_case");
    }
    const std::size_t words = text.size() / 4;
    require(kernels::hash_words(7, text.data(), words) == plain::hash_words(7, text.data(), words),
            "hash_words");
}

}  // namespace

// Each kernel against its plain form, for every beginning of the text and so every length of what
// is left over after whole blocks; and from every address, for the one that reads whole blocks.
void kernels(std::string_view input) {
    Parameters parameters(input);
    const char c = static_cast<char>(parameters.byte());
    const std::string text = parameters.rest();

    const std::size_t shift = text.size() % 16;
    for (std::size_t size = text.size(); size + 16 > text.size() && size > 0; --size)
        check_sized({text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size)}, c);
    check_sized({text.begin() + static_cast<std::ptrdiff_t>(shift), text.end()}, c);

    for (std::size_t begin = 0; begin <= text.size() && begin <= 64; ++begin) {
        const char* const rest = text.c_str() + begin;
        require(util::kernels::find_byte_or_nul(rest, c) == plain::find_byte_or_nul(rest, c),
                "find_byte_or_nul");
        require(text_length(rest) == plain::find_byte_or_nul(rest, '\0'), "text_length");
    }
}

}  // namespace util_fuzz
