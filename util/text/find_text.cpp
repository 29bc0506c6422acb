#include "util/text/find_text.h"

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

std::vector<std::size_t> borders_of(std::string_view what) {
    std::vector<std::size_t> borders(what.size() + 1);
    std::size_t border = 0;
    for (std::size_t i = 1; i < what.size(); ++i) {
        while (border > 0 && what[i] != what[border])
            border = borders[border];
        if (what[i] == what[border]) ++border;
        borders[i + 1] = border;
    }
    return borders;
}

}  // namespace util
