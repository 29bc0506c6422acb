#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "util/internal/position_error.h"
#include "util/text/byte_string.h"
#include "util/text/find_text.h"
#include "util/text/first_word.h"
#include "util/text/places.h"
#include "util/text/text_writer.h"

namespace {

// A character and the text that stands for it. The text is kept as a number, its first byte lowest.
struct Entity {
    constexpr Entity(char c, std::string_view text) : character(c), size(text.size()) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
            mask |= std::uint64_t{0xFF} << (8 * i);
        }
    }
    char character;
    std::size_t size;
    std::uint64_t word = 0;
    std::uint64_t mask = 0;
};

// The entity of the tab is decoded but, by design, never written: escaping tabs would change every
// fragment.
constexpr Entity entities[] = {{'&', "&amp;"},  {'<', "&lt;"},    {'>', "&gt;"},
                               {'"', "&quot;"}, {'\'', "&apos;"}, {'\t', "&#x9;"}};

// What each byte is escaped to: an entity or the byte itself. The highest byte is the length.
constexpr unsigned size_shift = 56;
constexpr auto written_bytes = [] {
    std::array<std::uint64_t, 256> words = {};
    for (std::size_t i = 0; i != words.size(); ++i)
        words[i] = (std::uint64_t{1} << size_shift) + i;
    for (const Entity& entity : entities) {
        if (entity.character != '\t')
            words[static_cast<unsigned char>(entity.character)] =
                (std::uint64_t{entity.size} << size_shift) + entity.word;
    }
    return words;
}();

std::uint64_t written_as(char byte) {
    return written_bytes[static_cast<unsigned char>(byte)];
}

// A perfect hash of the entities: the lower four bits of a sum over their second and third byte.
constexpr std::size_t slot(std::uint64_t word) {
    return (7 * (word >> 8) + (word >> 16)) & 15;
}
constexpr auto entity_slots = [] {
    std::array<std::size_t, 16> slots = {};
    for (std::size_t i = 0; i != std::size(entities); ++i)
        slots[slot(entities[i].word)] = i;
    return slots;
}();

// Returns the entity at the start of a text with these first bytes, or null.
constexpr const Entity* entity_of(std::uint64_t word) {
    const Entity& entity = entities[entity_slots[slot(word)]];
    return (word & entity.mask) == entity.word ? &entity : nullptr;
}
static_assert([] {
    for (const Entity& entity : entities) {
        if (entity_of(entity.word) != &entity) return false;
    }
    return true;
}());

bool has_outer_quotes(std::string_view text) {
    return text.size() > 1 && text.front() == '"' && text.back() == '"';
}

// Returns the text inside the outer quotes, if any, up to its first NUL. The quotes are those of
// the stored text, whether or not there is a NUL between them.
std::string_view visible_inside(std::string_view text) {
    if (has_outer_quotes(text)) text = text.substr(1, text.size() - 2);
    return util::up_to_nul(text);
}

// Texts of up to 64 bytes are changed byte by byte, into a buffer on the stack. Both functions
// return the end of what they wrote. They may overwrite 8 bytes from there on.
constexpr std::size_t short_space = 6 * util::chunk_size + sizeof(std::uint64_t);

char* put_escaped(std::string_view text, char* to) {
    for (const char c : text) {
        if (c == '\0') break;
        const std::uint64_t word = written_as(c);
        std::memcpy(to, &word, sizeof word);
        to += word >> size_shift;
    }
    return to;
}

char* put_decoded(std::string_view text, char* to) {
    for (std::size_t i = 0; i < text.size() && text[i] != '\0'; ++i) {
        *to = text[i];
        if (text[i] == '&') {
            if (const Entity* const entity = entity_of(util::first_word(text.substr(i)))) {
                *to = entity->character;
                i += entity->size - 1;
            }
        }
        ++to;
    }
    return to;
}

String changed_short(std::string_view text, char* put_changed(std::string_view text, char* to)) {
    char space[short_space];
    if (!has_outer_quotes(text)) return String(space, put_changed(text, space) - space);
    space[0] = '"';
    char* const end = put_changed(text.substr(1, text.size() - 2), space + 1);
    *end = '"';
    return String(space, end + 1 - space);
}

}  // namespace

String String::replaceXML() {
    if (size() <= util::chunk_size) {
        String result = changed_short(m_text, put_escaped);
        m_text = result.m_text;
        return result;
    }
    const std::size_t quotes = has_outer_quotes(view()) ? 1 : 0;
    static const util::kernels::Members specials("&<>\"'");
    const std::string_view inside = visible_inside(view());
    const util::Places places(inside, specials);

    const std::size_t visible_size = inside.size() + 2 * quotes;
    if (places.empty() && visible_size == size()) return *this;

    // Counting first: the result is allocated once, at its size.
    std::size_t escaped_size = visible_size;
    places.for_each(
        [&](std::size_t at) { escaped_size += (written_as(inside[at]) >> size_shift) - 1; });
    util::TextWriter escaped(escaped_size);
    escaped.put("\"", quotes);
    std::size_t begin = 0;
    places.for_each([&](std::size_t at) {
        const std::uint64_t word = written_as(inside[at]);
        escaped.put(inside.substr(begin), at - begin);
        escaped.put_word(word, word >> size_shift);
        begin = at + 1;
    });
    escaped.put(inside.substr(begin));
    escaped.put("\"", quotes);
    String result(escaped.take());
    m_text =
        std::string(result.m_text);  // copied first, so that this object is unchanged on failure
    return result;
}

String String::placeXML() {
    if (m_text == "\"") {
        // Removing the opening quote leaves no closing quote to remove.
        m_text.clear();
        util::require_position(npos, size());
    }
    if (size() <= util::chunk_size) {
        String result = changed_short(m_text, put_decoded);
        m_text = result.m_text;
        return result;
    }
    const std::size_t quotes = has_outer_quotes(view()) ? 1 : 0;
    static const util::kernels::Members ampersand("&");
    const std::string_view inside = visible_inside(view());
    const std::size_t visible_size = inside.size() + 2 * quotes;
    if (visible_size == size() && util::find_byte(inside, '&') == npos) return *this;

    const util::Places places(inside, ampersand);
    util::TextWriter decoded(visible_size);  // no entity is shorter than its character
    decoded.put("\"", quotes);
    std::size_t begin = 0;
    places.for_each([&](std::size_t at) {
        const Entity* const entity = entity_of(util::first_word(inside.substr(at)));
        if (!entity) return;
        decoded.put(inside.substr(begin), at - begin);
        decoded.put(entity->character);
        begin = at + entity->size;
    });
    decoded.put(inside.substr(begin));
    decoded.put("\"", quotes);
    String result(decoded.take());
    m_text = result.m_text;  // which has room for it
    return result;
}
