#include "util/text/text_writer.h"

namespace util {

void TextWriter::put(std::string_view text) {
    if (text.size() > gathered_most / 4) {
        flush();
        m_text.append(text);
    } else {
        std::memcpy(space(text.size()), text.data(), text.size());
        m_gathered += text.size();
    }
}

void TextWriter::flush() {
    m_text.append(m_buffer, m_gathered);
    m_gathered = 0;
}

}  // namespace util
