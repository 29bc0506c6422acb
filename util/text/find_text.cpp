#include "util/text/find_text.h"

#include "util/text/occurrences.h"

namespace util {

std::size_t find_text(std::string_view text, std::string_view what, std::size_t pos) {
    constexpr auto none = std::string_view::npos;
    if (what.empty()) return pos <= text.size() ? pos : none;
    std::size_t found = none;
    each_occurrence(text, what, pos, [&](std::size_t at) {
        found = at;
        return false;
    });
    return found;
}

}  // namespace util
