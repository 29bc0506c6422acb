#include <cstring>

#include "fuzz/fuzz.h"
#include "util/internal/ascii.h"
#include "util/portable/ksl_string.h"

namespace util_fuzz {
namespace {

bool plain_match(std::string list, const std::string& token, const std::string& delimits) {
    bool found = false;
    for (char* word = std::strtok(list.data(), delimits.c_str()); word;
         word = std::strtok(nullptr, delimits.c_str())) {
        found = found || token == word;
    }
    return found;
}

// The signed difference of the first bytes that are not the same letter in two cases.
int plain_order(const std::string& a, const std::string& b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int c1 = static_cast<signed char>(a[i]), c2 = static_cast<signed char>(b[i]);
        int difference = c1 - c2;
        if (c1 >= 0x41 && c1 <= 0x5A && c2 >= 0x61 && c2 <= 0x7A) difference += 32;
        if (c1 >= 0x61 && c1 <= 0x7A && c2 >= 0x41 && c2 <= 0x5A) difference -= 32;
        if (difference != 0) return difference;
    }
    return static_cast<int>(a.size()) - static_cast<int>(b.size());
}

std::string trimmed(std::string s) {
    while (!s.empty() && util::is_space(s.back()))
        s.pop_back();
    while (!s.empty() && util::is_space(s.front()))
        s.erase(0, 1);
    return s;
}

}  // namespace

void token_lists(std::string_view input) {
    Parameters parameters(input);
    const std::string delimits = up_to_nul(parameters.short_text());
    const std::string token = up_to_nul(parameters.short_text());
    const std::string list = up_to_nul(parameters.rest());

    require(ksl_match_token_str(list.c_str(), token.c_str(), delimits.c_str()) ==
                (plain_match(list, token, delimits) ? 1 : 0),
            "a word of the list");

    require(ksl_strcasecmp(list.c_str(), token.c_str()) == plain_order(list, token), "order");

    std::string cleaned = list;
    require(ksl_strcpy_clean(cleaned.data()) == 0, "cleaning succeeds");
    std::string upper = trimmed(list);
    std::transform(upper.begin(), upper.end(), upper.begin(), util::to_upper);
    require(upper == cleaned.c_str(), "trimmed and in upper case");
}

}  // namespace util_fuzz
