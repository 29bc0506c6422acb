#include "util/text/xml_tags.h"

#include <string>
#include <utility>

#include "util/internal/ascii.h"
#include "util/internal/guarded.h"
#include "util/text/find_text.h"

namespace {

constexpr int done = 0;
constexpr int failed = -1;
constexpr auto none = std::string_view::npos;

int extract_tag(const String& document, const String& tag, String& value) {
    const String opening = String(tag).replaceXML() + '>';
    const std::string_view text = document.view();
    const auto start = util::find_text(text, opening.view());
    if (start == none) return failed;
    const auto begin = start + opening.size();
    const auto end = util::find_byte(text, '<', begin);
    if (end == none) return failed;
    String element;
    element = document.substr(begin, end - begin);  // assigned: up to a NUL
    element.placeXML();
    value = std::move(element);
    return done;
}

int extract_attribute(const String& document, const String& tag, const String& attribute,
                      String& value) {
    if (document.first("<" + tag, 0) == none) return failed;
    const auto name = document.first(attribute, 0);
    if (name == none) return failed;
    const std::string_view text = document.view();
    const auto equals = util::find_byte(text, '=', name + util::up_to_nul(attribute.view()).size());
    if (equals == none) return failed;
    const auto open = util::find_byte(text, '"', equals + 1);
    if (open == none) return failed;
    const auto close = util::find_byte(text, '"', open + 1);
    if (close == none) return failed;
    value = document.substr(open + 1, close - open - 1);
    return done;
}

int extract_content(const String& document, const String& tag, String& content,
                    bool trim_trailing) {
    const String opening = "<" + tag;
    const auto start_tag = document.first(opening, 0);
    auto end = document.first("</" + tag + ">", 0);
    if (start_tag == none || end == none) return failed;
    const std::string_view text = document.view();
    auto begin = util::find_byte(text, '>', start_tag + opening.size());
    if (begin == none) return failed;
    do {
        ++begin;
    } while (begin < text.size() && util::is_space(text[begin]));
    if (begin > end) return failed;
    while (trim_trailing && end > begin && util::is_space(text[end - 1]))
        --end;
    content = document.substr(begin, end - begin);
    return done;
}

}  // namespace

int UTIL_addTag(String& document, const String& tag, const String& value) {
    const String name = String(tag).replaceXML();
    const String text = String(value).replaceXML();
    std::string element;
    element.reserve(2 * name.size() + text.size() + 5);
    element.append("<").append(name.view()).append(">");
    element.append(text.view());
    element.append("</").append(name.view()).append(">");
    document += element.c_str();
    return done;
}

int UTIL_extractTag(const String& document, const String& tag, String& value) {
    return util::guarded(failed, [&] { return extract_tag(document, tag, value); });
}

int UTIL_XMLParserExtractTagValue(const String* document, const String* tag,
                                  const String* attribute, String* value) {
    if (!document || !tag || !attribute || !value) return failed;
    return util::guarded(failed,
                         [&] { return extract_attribute(*document, *tag, *attribute, *value); });
}

int UTIL_XMLParserExtractTagXml(const String* document, const String* tag, String* content,
                                bool trimTrailing) {
    if (!document || !tag || !content) return failed;
    return util::guarded(failed,
                         [&] { return extract_content(*document, *tag, *content, trimTrailing); });
}
