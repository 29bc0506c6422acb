#include <cstring>
#include <vector>

#include "fuzz/fuzz.h"
#include "util/text/text.h"

namespace util_fuzz {
namespace {

// The first run of digits of each component, modulo 2^32.
std::vector<int> model_components(const String& version) {
    constexpr char digits[] = "0123456789";
    std::vector<int> values;
    for (const String& component : version.split(".", true)) {
        const std::string& text = component.str();
        std::uint32_t value = 0;
        for (std::size_t i = text.find_first_of(digits);
             i < text.size() && std::strchr(digits, text[i]) && text[i] != '\0'; ++i) {
            value = value * 10 + static_cast<std::uint32_t>(text[i] - '0');
        }
        values.push_back(static_cast<int>(value));
    }
    return values;
}

int model_order(const String& a, const String& b) {
    std::vector<int> left = model_components(a);
    std::vector<int> right = model_components(b);
    left.resize(std::max(left.size(), right.size()));
    right.resize(left.size());
    return left < right ? -1 : left > right ? 1 : 0;
}

void check_versions(const String& a, const String& b) {
    const int order = model_order(a, b);
    require(a.isLessThanVersion(b) == (order < 0), "less");
    require(a.isGreaterThanVersion(b) == (order > 0), "greater");
    require(a.isEqualToVersion(b) == (order == 0), "equal");
    require(b.isLessThanVersion(a) == (order > 0), "the other way round");
}

void check_date(const String& text) {
    const extstl::ExtTime time = text.toDate();
    require(text.split(" /:", true).size() >= 5 || time.label().empty(), "now has no label");
    if (!time.isValid()) return;
    // The text of a time names it, except in the hour that daylight saving repeats.
    const String written(time.toString());
    require(written.empty() == (time.time() == 1), "only the first second has no text");
    if (written.empty()) return;
    const extstl::ExtTime back = written.toDate();
    require(back.toString().str() == written.str(), "text there and back");
    const extstl::ExtDate day(time);
    require(!day.isValid() || (day.fields().tm_sec == 1 && day.fields().tm_min == 0),
            "a date has no time of day");
}

}  // namespace

void dates_and_versions(std::string_view input) {
    Parameters parameters(input);
    const String other(parameters.short_text());
    const String text(parameters.rest());
    check_versions(text, other);
    check_date(text);
}

}  // namespace util_fuzz
