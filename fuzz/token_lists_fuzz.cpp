#include <cstring>

#include "fuzz/fuzz.h"
#include "util/portable/ksl_string.h"

namespace util_fuzz {
namespace {

bool model_match(std::string list, const std::string& token, const std::string& delimits) {
    bool found = false;
    for (char* word = std::strtok(list.data(), delimits.c_str()); word;
         word = std::strtok(nullptr, delimits.c_str())) {
        found = found || token == word;
    }
    return found;
}

// The signed difference of the first bytes that are not the same letter in two cases.
int model_order(const std::string& a, const std::string& b) {
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

bool is_blank(char c) {
    return std::strchr(" \t\n\v\f\r", c) != nullptr;
}

std::string trimmed(std::string s) {
    while (!s.empty() && is_blank(s.back()))
        s.pop_back();
    while (!s.empty() && is_blank(s.front()))
        s.erase(0, 1);
    return s;
}

// With the letters from first to last moved to the other case.
std::string with_case_changed(std::string s, char first, char last) {
    for (char& c : s) {
        if (c >= first && c <= last) c = static_cast<char>(c ^ 0x20);
    }
    return s;
}

// The text after change() has worked on it in place.
template <typename Change>
std::string changed(std::string s, Change change) {
    change(s.data());
    return s.c_str();
}

}  // namespace

void token_lists(std::string_view input) {
    Parameters parameters(input);
    const std::string delimits = up_to_nul(parameters.short_text());
    const std::string token = up_to_nul(parameters.short_text());
    const std::string list = up_to_nul(parameters.rest());

    require(ksl_match_token_str(list.c_str(), token.c_str(), delimits.c_str()) ==
                (model_match(list, token, delimits) ? 1 : 0),
            "a word of the list");

    require(ksl_strcasecmp(list.c_str(), token.c_str()) == model_order(list, token), "order");

    // The same text but for case and, somewhere, one byte.
    std::string alike = with_case_changed(list, 'a', 'z');
    if (!alike.empty() && !token.empty()) alike[alike.size() * 3 / 4] = token[0];
    require(ksl_strcasecmp(list.c_str(), alike.c_str()) == model_order(list, alike), "order");

    const std::string upper = with_case_changed(list, 'a', 'z');
    require(changed(list, ksl_strupper) == upper, "strupper");
    require(changed(list, ksl_str2upper) == upper, "str2upper");
    require(changed(list, ksl_str2lower) == with_case_changed(list, 'A', 'Z'), "str2lower");
    const auto capitalise = [](char* s) { ksl_char2upper(s, 0); };
    require(
        changed(list, capitalise) == upper.substr(0, 1) + (list.c_str() + (list.empty() ? 0 : 1)),
        "char2upper");
    require(changed(list, ksl_strcpy_trim) == trimmed(list), "trimmed");
    require(changed(list, ksl_strcpy_clean) == trimmed(upper), "trimmed and in upper case");
}

}  // namespace util_fuzz
