#include <vector>

#include "fuzz/fuzz.h"
#include "util/text/byte_string.h"

namespace util_fuzz {
namespace {

// What the runtime itself makes of the same arguments, up to its first NUL, in so many bytes.
template <typename... Arguments>
std::string by_runtime(std::size_t room, const std::string& format, Arguments... arguments) {
    std::string text(room, '\0');
#ifdef _WIN32
    _snprintf(text.data(), text.size() - 1, format.c_str(), arguments...);
#else
    std::snprintf(text.data(), text.size(), format.c_str(), arguments...);
#endif
    return up_to_nul(text);
}

// The directives for one type of argument: first those that the library converts itself, then some
// that make it leave the whole format to the runtime.
struct Directives {
    std::size_t own;
    std::vector<const char*> all;
};
const Directives of_text = {3, {"%s", "%s%%", "%%%s", "%8s", "%-8s|", "%.3s", "%-s"}};
const Directives of_int = {
    5, {"%d", "%i", "%u", "%x", "%c", "%X", "%05d", "%+d", "%hd", "%#o", "%-3c"}};
const Directives of_long = {2, {"%ld", "%lu", "%lx", "%-12ld|", "%20lu"}};

}  // namespace

void format(std::string_view input) {
    Parameters parameters(input);
    const bool others = parameters.byte() % 4 == 0;
    std::string format;
    for (const Directives* directives : {&of_text, &of_int, &of_long, &of_int, &of_text}) {
        std::string between = parameters.short_text();
        std::replace(between.begin(), between.end(), '%', '_');
        const std::size_t choices = others ? directives->all.size() : directives->own;
        format += between + directives->all[parameters.byte() % choices];
    }
    const auto number = static_cast<int>(parameters.number());
    const auto wide = static_cast<long>(parameters.number());
    const std::string few = parameters.short_text();
    const std::string rest = parameters.rest();
    const char* const text = few == "0" ? nullptr : few.c_str();

    const std::size_t room = 1024 + 4 * input.size();
    const std::string expected = by_runtime(room, format, text, number, wide, 7, rest.c_str());
    require(String::format(format.c_str(), text, number, wide, 7, rest.c_str()) == expected,
            "format prints what the runtime prints");
    require(String(number) == by_runtime(16, "%d", number), "text of an int");
    require(String(static_cast<unsigned>(number)) == by_runtime(16, "%u", number),
            "text of an unsigned");
}

}  // namespace util_fuzz
