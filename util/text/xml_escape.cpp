#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "util/internal/position_error.h"
#include "util/text/byte_string.h"
#include "util/text/find_text.h"
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

// The text inside the outer quotes, if any, up to its first NUL. The quotes are those of the stored
// text, whether or not there is a NUL between them.
struct Visible {
    explicit Visible(std::string_view text)
        : quotes(text.size() > 1 && text.front() == '"' && text.back() == '"' ? 1 : 0) {
        inside = util::up_to_nul(text.substr(quotes, text.size() - 2 * quotes));
    }
    std::size_t size() const { return inside.size() + 2 * quotes; }

    std::size_t quotes;  // at each end
    std::string_view inside;
};

// A short text is changed byte by byte, into a buffer on the stack. Both functions return the end
// of what they wrote. They may overwrite 8 bytes from there on.
constexpr std::size_t short_space = 6 * util::chunk_size + sizeof(std::uint64_t);

char* put_escaped(std::string_view text, char* to) {
#pragma GCC unroll 8
    for (const char c : text) {
        const std::uint64_t word = written_as(c);
        std::memcpy(to, &word, sizeof word);
        to += word >> size_shift;
    }
    return to;
}

char* put_decoded(std::string_view text, char* to) {
    for (std::size_t i = 0; i < text.size(); ++i) {
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

// Also stores the result.
String changed_short(std::string& stored, const Visible& text,
                     char* put_changed(std::string_view text, char* to)) {
    char space[short_space];
    space[0] = '"';
    char* const end = put_changed(text.inside, space + text.quotes);
    *end = '"';
    String result(space, static_cast<std::size_t>(end - space) + text.quotes);
    stored = result.str();
    return result;
}

// Returns a text of `size` bytes or less. At each of the places it calls put_change(place, writer),
// which returns the number of bytes of the text that are replaced.
template <typename PutChange>
std::string changed_long(const Visible& text, std::size_t size, const util::Places& places,
                         PutChange put_change) {
    util::TextWriter changed(size);
    changed.put("\"", text.quotes);
    std::size_t begin = 0;
    places.for_each([&](std::size_t at) {
        changed.put(text.inside.substr(begin), at - begin);
        begin = at + put_change(at, changed);
    });
    changed.put(text.inside.substr(begin));
    changed.put("\"", text.quotes);
    return changed.take();
}

}  // namespace

String String::replaceXML() {
    const Visible text(view());
    if (text.size() <= util::chunk_size) return changed_short(m_text, text, put_escaped);
    const util::Places places(text.inside, util::kernels::Members("&<>\"'"));
    if (places.empty() && text.size() == size()) return *this;

    // Counting first: the result is allocated once, at its size.
    std::size_t escaped_size = text.size();
    places.for_each(
        [&](std::size_t at) { escaped_size += (written_as(text.inside[at]) >> size_shift) - 1; });
    const auto put_entity = [&](std::size_t at, util::TextWriter& escaped) {
        const std::uint64_t word = written_as(text.inside[at]);
        escaped.put_word(word, word >> size_shift);
        return std::size_t{1};
    };
    String result(changed_long(text, escaped_size, places, put_entity));
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
    const Visible text(view());
    if (text.size() <= util::chunk_size) return changed_short(m_text, text, put_decoded);
    if (text.size() == size() && util::find_byte(text.inside, '&') == npos) return *this;

    const util::Places places(text.inside, util::kernels::Members("&"));
    const auto put_character = [&](std::size_t at, util::TextWriter& decoded) {
        const Entity* const entity = entity_of(util::first_word(text.inside.substr(at)));
        if (!entity) return std::size_t{0};
        decoded.put(entity->character);
        return entity->size;
    };
    // No entity is shorter than its character.
    String result(changed_long(text, text.size(), places, put_character));
    m_text = result.m_text;  // which has room for it
    return result;
}
