#include <cstring>

#include "fuzz/fuzz.h"
#include "util/text/text.h"

namespace util_fuzz {
namespace {

struct Entity {
    char character;
    const char* text;
};
constexpr Entity entities[] = {{'&', "&amp;"},  {'<', "&lt;"},    {'>', "&gt;"},
                               {'"', "&quot;"}, {'\'', "&apos;"}, {'\t', "&#x9;"}};

std::string plain_decode(std::string w) {
    for (std::size_t i = 0; i < w.size(); ++i) {
        for (const Entity& entity : entities) {
            if (w.compare(i, std::strlen(entity.text), entity.text) == 0) {
                w.replace(i, std::strlen(entity.text), 1, entity.character);
                break;
            }
        }
    }
    return w;
}

std::string plain_replace(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

bool is_quoted(const std::string& text) {
    return text.size() > 1 && text.front() == '"' && text.back() == '"';
}

void check_decoding(const std::string& text) {
    if (text == "\"") return;  // raises, by contract
    std::string expected = is_quoted(text) ? text.substr(1, text.size() - 2) : text;
    expected = plain_decode(up_to_nul(expected));
    if (is_quoted(text)) expected = '"' + expected + '"';
    String decoded(text);
    require(decoded.placeXML().str() == up_to_nul(expected), "decoding");
    require(decoded.str() == expected, "decoding in place");
}

void check_there_and_back(const std::string& text) {
    String escaped(text);
    escaped.replaceXML();
    require(escaped.str().find_first_of("<>'") == std::string::npos, "nothing special is left");
    require(escaped.placeXML() == text, "escaped and decoded");
}

void check_element(const std::string& tag, const std::string& value) {
    String document("<before>");
    const String before = document;
    require(UTIL_addTag(document, tag, value) == 0, "adding succeeds");
    document = document.substr(before.size());
    String read("old");
    require(UTIL_extractTag(document, tag, read) == 0, "what was added is found");
    require(read == value, "element there and back");
}

}  // namespace

void xml_and_tags(std::string_view input) {
    Parameters parameters(input);
    const std::string tag = up_to_nul(parameters.short_text());
    const std::string other = up_to_nul(parameters.short_text());
    const std::string bytes = parameters.rest();
    const std::string text = up_to_nul(bytes);

    check_decoding(bytes);
    check_there_and_back(text);
    check_element(tag, text);
    if (!tag.empty()) {
        String replaced(bytes);
        replaced.replace(tag.c_str(), other.c_str(), extstl::ExtString::SCOPE_ALL);
        require(replaced.str() == plain_replace(text, tag, other), "replace");
    }

    const String document(text), name(tag), attribute(other);
    String value("old");
    const int found = UTIL_XMLParserExtractTagValue(&document, &name, &attribute, &value);
    require(found == 0 || value == "old", "a failure leaves the value");
    require(found != 0 || text.find('"' + value.str() + '"') != std::string::npos, "quoted text");
    String loose("old"), tight("old");
    const int status = UTIL_XMLParserExtractTagXml(&document, &name, &loose, false);
    require(UTIL_XMLParserExtractTagXml(&document, &name, &tight, true) == status, "same status");
    require(status == 0 || (loose == "old" && tight == "old"), "a failure leaves the content");
    require(status != 0 || loose.str().compare(0, tight.size(), tight.str()) == 0, "only trimmed");
}

}  // namespace util_fuzz
