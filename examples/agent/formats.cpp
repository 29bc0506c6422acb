#include "formats.h"

#include <ctime>
#include <string>
#include <string_view>

#include "output.h"

namespace {

const char* const replacement = "\xEF\xBF\xBD";  // U+FFFD

// The bytes of the UTF-8 character at the start of `text`; 0 when there is none.
std::size_t character_length(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    const unsigned int lead = byte(0);
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    // No overlong forms, no surrogates, nothing beyond U+10FFFF.
    const unsigned int second = byte(1);
    const bool is_refused = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                            (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return is_refused ? 0 : length;
}

// `text` with convert(character) in place of each character. What is no character is given as "".
template <typename Convert>
String each_character(const String& text, Convert convert) {
    std::string result;
    for (std::string_view rest = text.view(); !rest.empty();) {
        const std::size_t length = character_length(rest);
        result += convert(rest.substr(0, length));
        rest.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

std::string json_character(std::string_view character) {
    if (character.empty()) return replacement;
    if (character == "\"" || character == "\\") return "\\" + std::string(character);
    // A terminal obeys these two ranges, so they are escaped as well: U+007F, U+0080 to U+009F.
    const auto last = static_cast<unsigned char>(character.back());
    const bool is_control =
        character.size() == 1 ? last < 0x20 || last == 0x7F : character[0] == '\xC2' && last < 0xA0;
    if (is_control) return String::format("\\u%04x", last).str();
    return std::string(character);
}

std::string xml_character(std::string_view character) {
    const bool is_forbidden = character.empty() || character == "\xEF\xBF\xBE" ||
                              character == "\xEF\xBF\xBF" ||
                              (static_cast<unsigned char>(character[0]) < 0x20 &&
                               character != "\t" && character != "\n" && character != "\r");
    return is_forbidden ? replacement : std::string(character);
}

String csv_field(const String& text) {
    const bool is_plain = text.view().find_first_of(",\"\r\n") == std::string_view::npos;
    return is_plain ? text : "\"" + text.replace("\"", "\"\"") + "\"";
}

}  // namespace

Format format_of(const Options& options) {
    Format format = Format::text;
    for (const auto& [name, named] :
         {std::pair("--json", Format::json), std::pair("--csv", Format::csv),
          std::pair("--xml", Format::xml)}) {
        if (!options.has(name)) continue;
        if (format != Format::text) throw UsageError("only one format at a time");
        format = named;
    }
    return format;
}

String json(const String& text) {
    return "\"" + each_character(text, json_character) + "\"";
}
String json(std::uint64_t number) {
    return std::to_string(number);
}

String json_object(const JsonMembers& members) {
    String text;
    for (const auto& [name, value] : members) {
        text += (text.empty() ? "{" : ", ") + json(String(name)) + ": " + value;
    }
    return text + "}";
}

JsonDocument::JsonDocument() {
    print("{");
}
void JsonDocument::member(const char* name, const String& value) {
    end_list();
    add("  " + json(String(name)) + ": " + value);
}
void JsonDocument::list(const char* name) {
    member(name, "[");
    print(m_pending);
    m_pending = "";
    m_in_list = true;
}
void JsonDocument::element(const String& value) {
    add("    " + value);
}
void JsonDocument::end() {
    end_list();
    if (!m_pending.empty()) print(m_pending);
    print("}");
}
void JsonDocument::add(const String& line) {
    if (!m_pending.empty()) print(m_pending + ",");
    m_pending = line;
}
void JsonDocument::end_list() {
    if (!m_in_list) return;
    if (!m_pending.empty()) print(m_pending);
    m_pending = "  ]";
    m_in_list = false;
}

String csv_row(const std::vector<String>& fields) {
    String row;
    for (const String& field : fields)
        row += (&field == fields.data() ? "" : ",") + csv_field(field);
    return row;
}

String xml_element(const String& tag, const String& text) {
    String element;
    UTIL_addTag(element, tag, each_character(text, xml_character));
    return element;
}

String utc_text(std::int64_t time) {
    const std::tm* const fields = _gmtime64(&time);
    char text[sizeof "2010-03-07T14:05:09Z"];
    if (fields == nullptr || std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", fields) == 0)
        return "";
    return text;
}
