#include <algorithm>
#include <utility>

#include "util/text/byte_string.h"
#include "util/text/position_error.h"

namespace {

struct Entity {
    char character;
    std::string_view text;
    bool written;
};

// The tab's entity is read but never written: escaping tabs would change every fragment.
constexpr Entity entities[] = {
    {'&', "&amp;", true},  {'<', "&lt;", true},    {'>', "&gt;", true},
    {'"', "&quot;", true}, {'\'', "&apos;", true}, {'\t', "&#x9;", false},
};

// What each byte is escaped to; empty for the bytes that stay.
class EscapeTable {
  public:
    constexpr EscapeTable() {
        for (const Entity& entity : entities) {
            if (entity.written) m_texts[static_cast<unsigned char>(entity.character)] = entity.text;
        }
    }
    constexpr std::string_view operator[](char c) const {
        return m_texts[static_cast<unsigned char>(c)];
    }

  private:
    std::string_view m_texts[256];
};

constexpr EscapeTable escapes;

// The entity that text begins with, or null.
const Entity* entity_at(std::string_view text) {
    for (const Entity& entity : entities) {
        if (text.substr(0, entity.text.size()) == entity.text) return &entity;
    }
    return nullptr;
}

bool has_outer_quotes(std::string_view text) {
    return text.size() > 1 && text.front() == '"' && text.back() == '"';
}

// What lies within the outer quotes, if any, up to its first NUL. The quotes are looked for at the
// ends of the stored text: that a NUL inside cuts the text comes after.
std::string_view visible_inside(std::string_view text) {
    if (has_outer_quotes(text)) text = text.substr(1, text.size() - 2);
    return text.substr(0, text.find('\0'));
}

}  // namespace

String String::replaceXML() {
    const bool quoted = has_outer_quotes(view());
    const std::string_view inside = visible_inside(view());

    // Counting first lets the result be allocated once, at its size.
    std::size_t escaped_size = quoted ? 2 : 0;
    for (const char c : inside)
        escaped_size += std::max<std::size_t>(escapes[c].size(), 1);

    std::string escaped;
    escaped.reserve(escaped_size);
    if (quoted) escaped += '"';
    for (const char c : inside) {
        if (const std::string_view entity = escapes[c]; !entity.empty()) {
            escaped += entity;
        } else {
            escaped += c;
        }
    }
    if (quoted) escaped += '"';
    String copy(escaped);  // made first: when it fails, this object is as it was
    m_text = std::move(escaped);
    return copy;
}

String String::placeXML() {
    if (m_text == "\"") {
        // The opening quote is taken off, and no closing one is left to take.
        m_text.clear();
        util::require_position(npos, size());
    }
    const bool quoted = has_outer_quotes(view());
    std::string_view unread = visible_inside(view());

    std::string decoded;
    decoded.reserve(unread.size() + (quoted ? 2 : 0));  // no entity is shorter than its character
    if (quoted) decoded += '"';
    while (!unread.empty()) {
        const std::size_t plain = std::min(unread.find('&'), unread.size());
        decoded.append(unread, 0, plain);
        unread.remove_prefix(plain);
        if (unread.empty()) break;
        const Entity* entity = entity_at(unread);
        decoded += entity ? entity->character : '&';
        unread.remove_prefix(entity ? entity->text.size() : 1);
    }
    if (quoted) decoded += '"';
    String copy(decoded);  // made first, as above
    m_text = std::move(decoded);
    return copy;
}
