#include "util/host/host_line.h"

#include <algorithm>

#include "util/internal/ascii.h"

namespace util {
namespace {

std::string_view take_word(std::string_view& line) {
    const auto begin = std::find_if_not(line.begin(), line.end(), is_space);
    const auto end = std::find_if(begin, line.end(), is_space);
    const auto at = static_cast<std::size_t>(begin - line.begin());
    const auto size = static_cast<std::size_t>(end - begin);
    const std::string_view word = line.substr(at, size);
    line.remove_prefix(at + size);
    return word;
}

bool take_number(std::string_view& text) {
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    const auto end = std::find_if_not(text.begin(), text.end(), is_digit);
    const auto digits = static_cast<std::size_t>(end - text.begin());
    text.remove_prefix(digits);
    return digits > 0;
}

bool is_address(std::string_view word) {
    for (int separators = 0; separators < 3; ++separators) {
        if (!take_number(word) || word.empty()) return false;
        word.remove_prefix(1);
    }
    return take_number(word) && word.empty();
}

}  // namespace

std::string_view host_of_address_record(std::string_view line) {
    const std::string_view name = take_word(line);
    const std::string_view type = take_word(line);
    const std::string_view address = take_word(line);
    const bool ends_there = take_word(line).empty();
    return type == "A" && ends_there && is_address(address) ? name : std::string_view();
}

}  // namespace util
