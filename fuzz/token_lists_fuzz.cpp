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

std::string folded(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(), util::to_lower);
    return s;
}

std::string trimmed(std::string s) {
    while (!s.empty() && util::is_space(s.back()))
        s.pop_back();
    while (!s.empty() && util::is_space(s.front()))
        s.erase(0, 1);
    return s;
}

int sign(int n) {
    return (n > 0) - (n < 0);
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

    const int order = ksl_strcasecmp(list.c_str(), token.c_str());
    require((order == 0) == (folded(list) == folded(token)), "equal but for the case of letters");
    require(sign(order) == -sign(ksl_strcasecmp(token.c_str(), list.c_str())), "antisymmetric");

    std::string cleaned = list;
    require(ksl_strcpy_clean(cleaned.data()) == 0, "cleaning succeeds");
    std::string upper = trimmed(list);
    std::transform(upper.begin(), upper.end(), upper.begin(), util::to_upper);
    require(upper == cleaned.c_str(), "trimmed and in upper case");
}

}  // namespace util_fuzz
