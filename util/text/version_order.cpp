#include <algorithm>

#include "util/internal/decimal.h"
#include "util/text/byte_string.h"

namespace {

// Takes the next component that is not empty off the front of rest and returns its value; 0 when
// there is none left. rest is the end of a stored text: behind its last digit stands a NUL.
std::int32_t take_component(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of('.'), rest.size()));
    const std::string_view component = rest.substr(0, rest.find('.'));
    rest.remove_prefix(component.size());
    const auto digit = component.find_first_of("0123456789");
    return digit == std::string_view::npos ? 0 : util::parse_int(component.data() + digit);
}

// Negative, 0 or positive as version a is less than, equal to or greater than version b.
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
