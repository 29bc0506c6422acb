// Growth: every text function on n, 2n and 4n bytes of the input that is worst for it. Linear time
// makes the last 4 times the first; quadratic time would make it 16 times.
#include <new>
#include <string>

#include "bench/harness.h"
#include "util/portable/portable.h"
#include "util/text/text.h"

using bench::keep;
using bench::Operation;

namespace {

// All blocks stay below 128 KB: beyond, and for many smaller ones, Wine's heap asks the system.
constexpr std::size_t size = 1500;

// `make` returns a body for an input of so many bytes.
template <typename Make>
void growth(const char* name, Make make) {
    run(Operation(std::string("growth: ") + name)
            .library(make(size))
            .library("twice the size", make(2 * size))
            .library("four times the size", make(4 * size))
            .by_minimum());
}

String repeated(const std::string& piece, std::size_t n) {
    std::string text;
    while (text.size() < n)
        text += piece;
    return text;
}

// At every place of a text of "a", the first half of its bytes match, and the last one.
String nearly(std::size_t n) {
    return String(n / 4, 'a') + 'b' + String(n / 4, 'a');
}

// A member that changes its object, on a copy of a text of such pieces.
template <typename Change>
void change(const char* name, const std::string& piece, Change change) {
    growth(name, [=](std::size_t n) {
        return [=, text = repeated(piece, n)] {
            String copy(text);
            keep(change(copy));
        };
    });
}

template <typename Ask>
void ask(const char* name, const std::string& piece, Ask ask) {
    growth(name, [=](std::size_t n) {
        return [=, text = repeated(piece, n), what = nearly(n)] { keep(ask(text, what)); };
    });
}

const bench::Section section("11 Growth on the worst input", [] {
    using Text = const String&;
    ask("first", "a", [](Text s, Text what) { return s.first(what, 0); });
    ask("find, either case", "a", [](Text s, Text what) { return s.find(what.str(), 0, 1); });
    ask("last", "a", [](Text s, Text) { return s.last('b'); });
    ask("replace, nearly found", "a", [](Text s, Text what) { return s.replace(what, "x"); });
    ask("replace each byte", "a", [](Text s, Text) { return s.replace("a", "bc"); });
    ask("split_by_tag, nearly found", "a", [](Text s, Text tag) { return s.split_by_tag(tag); });
    ask("split_by_tag, found often", "abcdefgh", [](Text s, Text) { return s.split_by_tag("a"); });
    ask("split, filled", "abcd,", [](Text s, Text) { return s.split(",", true); });
    ask("split, empty", ",,abcdefgh", [](Text s, Text) { return s.split(",", false); });
    ask("string array", "abcd$",
        [](Text s, Text) { return serializeStrArray(deserializeStrArray(s)); });
    ask("trim", " ", [](Text s, Text set) { return s.trim(set + " "); });
    ask("to_upper", "a", [](Text s, Text) { return s.to_upper(); });
    ask("hash, isAscii, hasUnprintable", "a",
        [](Text s, Text) { return s.hash() + s.isAscii() + s.hasUnprintable(); });
    ask("to_int", "0", [](Text s, Text) { return s.to_int(); });
    ask("version, dots", "..1", [](Text s, Text) { return s.isLessThanVersion(s + ".1"); });
    ask("version, no digit", "a", [](Text s, Text) { return s.isEqualToVersion(s); });
    ask("toDate", "12345678 / :", [](Text s, Text) { return s.toDate().isValid(); });
    ask("format", "a", [](Text s, Text) { return String::format("%s", s.c_str()); });
    ask("format, by the runtime", "a",
        [](Text s, Text) { return String::format("%*s", static_cast<int>(s.size()), ""); });
    change("replaceXML", "&", [](String& s) { return s.replaceXML(); });
    change("placeXML", "&amp;", [](String& s) { return s.placeXML(); });
    change("placeXML, no entity", "&", [](String& s) { return s.placeXML(); });
    change("squeeze_spaces", " \x01", [](String& s) { return s.squeeze_spaces(); });
    change("replace the first", "a",
           [](String& s) { return s.replace("aaab", "", extstl::ExtString::SCOPE_FIRST); });
    ask("UTIL_extractTag", "a", [](Text s, Text tag) {
        String value;
        return UTIL_extractTag(s, tag, value);
    });
    ask("UTIL_XMLParserExtractTagValue", "<a a", [](Text s, Text attribute) {
        String value;
        const String tag("a");
        return UTIL_XMLParserExtractTagValue(&s, &tag, &attribute, &value);
    });
    ask("UTIL_XMLParserExtractTagXml", "<a> ", [](Text s, Text) {
        String content;
        const String tag("a");
        return UTIL_XMLParserExtractTagXml(&s, &tag, &content, true);
    });
    ask("ksl_match_token_str", "aa,",
        [](Text s, Text token) { return ksl_match_token_str(s, token, ","); });
});

}  // namespace
