#include <utility>

#include "util/internal/ascii.h"
#include "util/text/byte_string.h"
#include "util/text/find_text.h"

String String::squeeze_spaces() {
    const std::string_view visible = util::c_text(c_str());
    std::string squeezed;
    squeezed.reserve(visible.size());
    for (std::size_t i = 0; i < visible.size(); ++i) {
        const char c = visible[i];
        if (!util::is_space(c) && !util::is_control(c)) {
            squeezed += c;
        } else if (i > 0 && !util::is_space(visible[i - 1])) {
            squeezed += ' ';
        }
    }
    String copy(squeezed);  // copied first, so that this object is unchanged on failure
    m_text = std::move(squeezed);
    return copy;
}
