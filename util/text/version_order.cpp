#include <algorithm>

#include "util/internal/decimal.h"
#include "util/text/byte_string.h"

namespace {

// Removes the next component that is not empty from `rest` and returns its value; 0 if there is
// none. `rest` is the end of a stored text, so a NUL follows its last digit.
std::int32_t take_component(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of('.'), rest.size()));
    const std::string_view component = rest.substr(0, rest.find('.'));
    rest.remove_prefix(component.size());
    const auto digit = component.find_first_of("0123456789");
    return digit == std::string_view::npos ? 0 : util::parse_int(component.data() + digit);
}

// Returns a negative number, 0 or a positive number if version `a` is less than, equal to or
// greater than `b`.
int compare_versions(std::string_view a, std::string_view b) {
    while (!a.empty() || !b.empty()) {
        const std::int32_t from_a = take_component(a);
        const std::int32_t from_b = take_component(b);
        if (from_a != from_b) return from_a < from_b ? -1 : 1;
    }
    return 0;
}

}  // namespace

bool String::isGreaterThanVersion(const String& other) const {
    return compare_versions(view(), other.view()) > 0;
}

bool String::isLessThanVersion(const String& other) const {
    return compare_versions(view(), other.view()) < 0;
}

bool String::isEqualToVersion(const String& other) const {
    return compare_versions(view(), other.view()) == 0;
}
