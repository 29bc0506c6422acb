#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <utility>

#include "util/internal/find_text.h"
#include "util/internal/marks.h"
#include "util/internal/text_writer.h"
#include "util/text/byte_string.h"
#include "util/text/position_error.h"

namespace {

class Entity {
  public:
    constexpr Entity(char character, std::string_view text)
        : m_character(character), m_size(text.size()) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            m_text[i] = text[i];
            m_word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
            m_mask |= std::uint64_t{0xFF} << (8 * i);
        }
    }
    constexpr char character() const { return m_character; }
    constexpr std::size_t size() const { return m_size; }
    std::string_view wide_text() const { return {m_text, sizeof m_text}; }
    constexpr std::uint64_t word() const { return m_word; }
    constexpr bool begins(std::uint64_t word) const { return (word & m_mask) == m_word; }

  private:
    char m_character;
    std::size_t m_size;
    char m_text[2 * util::TextWriter::block] = {};  // more than its size, for the writer's blocks
    std::uint64_t m_word = 0;  // the text as one number, and the bits that it takes up
    std::uint64_t m_mask = 0;
};

// The tab's entity is read but never written: escaping tabs would change every fragment.
constexpr Entity entities[] = {{'&', "&amp;"},  {'<', "&lt;"},    {'>', "&gt;"},
                               {'"', "&quot;"}, {'\'', "&apos;"}, {'\t', "&#x9;"}};

// The entities found at once, without a comparison with each. The five characters that are escaped
// differ in their lower four bits; the six texts in those of a sum over their second and third
// byte.
class EntityTable {
  public:
    constexpr EntityTable() {
        for (std::size_t i = 0; i < std::size(entities); ++i) {
            if (i < 5) m_by_character[slot(entities[i].character())] = i;
            m_by_text[slot(entities[i].word())] = i;
        }
    }
    // What a byte that must be escaped is written as.
    constexpr const Entity& of(char special) const {
        return entities[m_by_character[slot(special)]];
    }
    // The entity that a text with these first bytes begins with, or null.
    constexpr const Entity* of(std::uint64_t word) const {
        const Entity& entity = entities[m_by_text[slot(word)]];
        return entity.begins(word) ? &entity : nullptr;
    }

  private:
    static constexpr std::size_t slot(char special) { return special & 15; }
    static constexpr std::size_t slot(std::uint64_t word) {
        return (7 * (word >> 8) + (word >> 16)) & 15;
    }

    std::size_t m_by_character[16] = {};
    std::size_t m_by_text[16] = {};
};

constexpr EntityTable entity_table;

// No two entities share a place in the tables.
constexpr bool finds_each() {
    for (std::size_t i = 0; i < std::size(entities); ++i) {
        const Entity& entity = entities[i];
        if (i < 5 && entity_table.of(entity.character()).character() != entity.character()) {
            return false;
        }
        if (!entity_table.of(entity.word())) return false;
    }
    return true;
}
static_assert(finds_each());

// The first bytes of text as the processor reads them, the first one lowest; zeros behind its end.
std::uint64_t first_word(std::string_view text) {
    std::uint64_t word = 0;
    if (text.size() >= sizeof word) {
        std::memcpy(&word, text.data(), sizeof word);
    } else {
        std::memcpy(&word, text.data(), text.size());
    }
    return word;
}

bool has_outer_quotes(std::string_view text) {
    return text.size() > 1 && text.front() == '"' && text.back() == '"';
}

// What lies within the outer quotes, if any, up to its first NUL. The quotes are looked for at the
// ends of the stored text: that a NUL inside cuts the text comes after.
std::string_view visible_inside(std::string_view text) {
    if (has_outer_quotes(text)) text = text.substr(1, text.size() - 2);
    return util::up_to_nul(text);
}

}  // namespace

String String::replaceXML() {
    const bool quoted = has_outer_quotes(view());
    const std::string_view inside = visible_inside(view());

    static const util::kernels::Members characters("&<>\"'");
    const util::Marks specials(inside, characters);

    // Counting first lets the result be allocated once, at its size.
    std::size_t escaped_size = inside.size() + (quoted ? 2 : 0);
    const bool whole = escaped_size == size();  // nothing behind a NUL
    specials.for_each(
        [&](std::size_t at) { escaped_size += entity_table.of(inside[at]).size() - 1; });
    if (whole && escaped_size == size()) return *this;

    util::TextWriter escaped(escaped_size);
    if (quoted) escaped.put('"');
    std::size_t begin = 0;
    specials.for_each([&](std::size_t at) {
        const Entity& entity = entity_table.of(inside[at]);
        escaped.put(inside.substr(begin), at - begin);
        escaped.put(entity.wide_text(), entity.size());
        begin = at + 1;
    });
    escaped.put(inside.substr(begin), inside.size() - begin);
    if (quoted) escaped.put('"');
    std::string result = escaped.take();
    String copy(result);  // made first: when it fails, this object is as it was
    m_text = std::move(result);
    return copy;
}

String String::placeXML() {
    if (m_text == "\"") {
        // The opening quote is taken off, and no closing one is left to take.
        m_text.clear();
        util::require_position(npos, size());
    }
    const bool quoted = has_outer_quotes(view());
    const std::string_view inside = visible_inside(view());

    static const util::kernels::Members ampersand("&");
    const util::Marks beginnings(inside, ampersand);

    // No entity is shorter than its character.
    const std::size_t decoded_size = inside.size() + (quoted ? 2 : 0);
    if (decoded_size == size() && util::find_byte(inside, '&') == npos) return *this;

    util::TextWriter decoded(decoded_size);
    if (quoted) decoded.put('"');
    std::size_t begin = 0;
    beginnings.for_each([&](std::size_t at) {
        const Entity* const entity = entity_table.of(first_word(inside.substr(at)));
        if (!entity) return;
        decoded.put(inside.substr(begin), at - begin);
        decoded.put(entity->character());
        begin = at + entity->size();
    });
    decoded.put(inside.substr(begin), inside.size() - begin);
    if (quoted) decoded.put('"');
    std::string result = decoded.take();
    String copy(result);  // made first, as above
    m_text = std::move(result);
    return copy;
}
