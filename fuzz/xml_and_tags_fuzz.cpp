#include <cstring>
#include <iterator>

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

std::string model_decode(std::string w) {
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

std::string model_replace(std::string text, const std::string& from, const std::string& to) {
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
    expected = model_decode(up_to_nul(expected));
    if (is_quoted(text)) expected = '"' + expected + '"';
    String decoded(text);
    require(decoded.placeXML().str() == up_to_nul(expected), "decoding");
    require(decoded.str() == expected, "decoding in place");
}

// The described steps, one after another.
std::string model_escape(const std::string& text) {
    std::string inside = is_quoted(text) ? text.substr(1, text.size() - 2) : text;
    inside = up_to_nul(inside);
    for (const Entity& entity : entities) {
        if (entity.character == '\t') continue;  // read, but never written
        inside = model_replace(inside, std::string(1, entity.character), entity.text);
    }
    return is_quoted(text) ? '"' + inside + '"' : inside;
}

void check_there_and_back(const std::string& text) {
    String escaped(text);
    require(escaped.replaceXML() == model_escape(text), "escaping");
    require(escaped.str() == model_escape(text), "escaping in place");
    const std::string decoded = escaped.placeXML().str();
    require(text != up_to_nul(text) || decoded == text, "escaped and decoded");
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

// The extractors as they are described, one search after the other; false is failure.
bool model_attribute(const std::string& document, const std::string& tag,
                     const std::string& attribute, std::string& value) {
    const std::size_t name = document.find(attribute);
    if (document.find('<' + tag) == std::string::npos || name == std::string::npos) return false;
    const std::size_t equals = document.find('=', name + attribute.size());
    const std::size_t open = document.find('"', std::min(equals, document.size()));
    const std::size_t close = document.find('"', std::min(open, document.size()) + 1);
    if (close == std::string::npos) return false;
    value = document.substr(open + 1, close - open - 1);
    return true;
}

bool model_content(const std::string& document, const std::string& tag, bool trim_trailing,
                   std::string& content) {
    std::size_t begin = document.find('<' + tag);
    std::size_t end = document.find("</" + tag + '>');
    if (begin == std::string::npos || end == std::string::npos) return false;
    begin = document.find('>', begin + 1 + tag.size());
    if (begin == std::string::npos) return false;
    ++begin;
    const auto is_blank = [&](std::size_t at) {
        return std::string(" \t\n\v\f\r").find(document[at]) != std::string::npos;
    };
    while (begin < document.size() && is_blank(begin))
        ++begin;
    if (begin > end) return false;
    while (trim_trailing && end > begin && is_blank(end - 1))
        --end;
    content = document.substr(begin, end - begin);
    return true;
}

bool model_element(const std::string& document, const std::string& tag, std::string& value) {
    for (std::size_t at = 0; (at = document.find(tag, at)) != std::string::npos; ++at) {
        const std::size_t close = at + tag.size();
        if (close >= document.size() || document[close] != '>') continue;
        const std::size_t end = document.find('<', close + 1);
        if (end == std::string::npos) return false;
        value = document.substr(close + 1, end - close - 1);
        return true;
    }
    return false;
}

// A document of such pieces: random bytes seldom name a tag at all.
std::string assembled(const std::string& choices, const std::string& tag,
                      const std::string& attribute) {
    const std::string pieces[] = {
        '<' + tag, "</" + tag + '>', tag + '>', attribute, ">", "<", "=", "\"", " \n", "v", "&lt;"};
    std::string document;
    for (const char c : choices)
        document += pieces[static_cast<unsigned char>(c) % std::size(pieces)];
    return document;
}

void check_extractors(const String& document, const String& tag, const String& attribute) {
    String actual("old");
    std::string expected = "old";
    int found = model_attribute(document.str(), tag.str(), attribute.str(), expected) ? 0 : -1;
    require(UTIL_XMLParserExtractTagValue(&document, &tag, &attribute, &actual) == found,
            "attribute found");
    require(actual == expected, "attribute");
    for (const bool trim_trailing : {false, true}) {
        found = model_content(document.str(), tag.str(), trim_trailing, expected) ? 0 : -1;
        require(UTIL_XMLParserExtractTagXml(&document, &tag, &actual, trim_trailing) == found,
                "content found");
        require(actual == expected, "content");
    }
    const bool element =
        model_element(document.str(), String(tag).replaceXML().str(), expected) && expected != "\"";
    require((UTIL_extractTag(document, tag, actual) == 0) == element, "element found");
    require(!element || actual == String(expected).placeXML(), "element");
}

void check_replacing(const std::string& bytes, const std::string& from, const std::string& to) {
    if (from.empty()) return;
    String replaced(bytes);
    replaced.replace(from.c_str(), to.c_str(), extstl::ExtString::SCOPE_ALL);
    require(replaced.str() == model_replace(up_to_nul(bytes), from, to), "replace");
}

}  // namespace

void xml_and_tags(std::string_view input) {
    Parameters parameters(input);
    const std::string tag = up_to_nul(parameters.short_text());
    const std::string other = up_to_nul(parameters.short_text());
    const std::string bytes = parameters.rest();
    const std::string text = up_to_nul(bytes);

    check_decoding(bytes);
    check_there_and_back(bytes);
    if (bytes.size() % 16 == 15) {  // some so long that the result is written in several chunks
        std::string repeated = bytes;
        while (repeated.size() < 2000)
            repeated += bytes;
        check_decoding(repeated);
        check_there_and_back(repeated);
    }
    check_element(tag, text);
    check_replacing(bytes, tag, other);
    const std::string few = text.substr(0, 64);  // of which the result is often four times as long
    check_replacing(few, few.substr(0, 1), few);

    check_extractors(text, tag, other);
    check_extractors(assembled(bytes.substr(0, 20), tag, other), tag, other);
}

}  // namespace util_fuzz
