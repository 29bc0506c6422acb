#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <stdexcept>

#include "util/text/byte_string.h"

using namespace std::string_literals;

namespace {

TEST(XmlEscapeTest, EscapesAndDecodesInPlace) {
    const struct {
        const char *text, *escaped, *decoded;
    } cases[] = {
        {"a<b & 'c'>", "a&lt;b &amp; &apos;c&apos;&gt;", "a<b & 'c'>"},
        {"\"x<y\"", "\"x&lt;y\"", "\"x<y\""},
        {"a\tb", "a\tb", "a\tb"},
        {"&#x9;", "&amp;#x9;", "\t"},
        {"&amp;amp;", "&amp;amp;amp;", "&amp;"},
        {"a &b", "a &amp;b", "a &b"},
    };
    for (const auto& c : cases) {
        String escaped(c.text), decoded(c.text);
        EXPECT_EQ(escaped.replaceXML(), c.escaped);
        EXPECT_EQ(decoded.placeXML(), c.decoded);
        EXPECT_TRUE(escaped == c.escaped && decoded == c.decoded) << "the object changes too";
    }
}

TEST(XmlEscapeTest, OneQuoteAloneIsEscapedButCannotBeDecoded) {
    String text("\"");
    EXPECT_EQ(String(text).replaceXML(), "&quot;");
    try {
        text.placeXML();
        ADD_FAILURE() << "nothing raised";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "invalid string position");
    }
    EXPECT_EQ(text, "") << "the first removal has taken it";
}

// The described steps, one after another, as models.
String escaped_as_described(const std::string& text) {
    const bool quoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
    String s(quoted ? text.substr(1, text.size() - 2) : text);
    s = s.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;");
    s = s.replace("\"", "&quot;").replace("'", "&apos;").replace("'", "&#x9;");
    return quoted ? "\"" + s + "\"" : s;
}

std::string decoded_as_described(std::string text) {
    const bool quoted = !text.empty() && text.front() == '"' && text.back() == '"';
    if (quoted) text = text.substr(1, text.size() - 2);
    text = text.c_str();
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (const char* row : {"&&amp;", "<&lt;", ">&gt;", "\"&quot;", "'&apos;", "\t&#x9;"}) {
            if (text.compare(i, std::strlen(row + 1), row + 1) != 0) continue;
            text.replace(i, std::strlen(row + 1), 1, *row);
            break;
        }
    }
    return quoted ? '"' + text + '"' : text;
}

TEST(XmlEscapeTest, AgreesWithTheDescribedStepsOnRandomTexts) {
    const unsigned seed = 20240609;
    std::mt19937 random(seed);
    const std::string parts[] = {"&", "&amp;", "&lt;", "&gt;", "&quot;", "&apos;", "&#x9;", "<",
                                 ">", "'",     "\t",   "\"",   "\xE9\"", "amp;",   ";",     "\0"s};
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto count = random() % 10; count > 0; --count)
            text += parts[random() % std::size(parts)];
        if (random() % 3 == 0) text = '"' + text + '"';
        SCOPED_TRACE(testing::Message() << "seed " << seed << " round " << round << " text "
                                        << testing::PrintToString(text));
        ASSERT_EQ(String(text).replaceXML(), escaped_as_described(text));
        if (text == "\"") continue;
        ASSERT_EQ(String(text).placeXML(), decoded_as_described(text));
    }
}

TEST(XmlEscapeTest, DecodesALargeTextOfEntitiesInOnePass) {
    const String original(std::uint64_t{1} << 22, '&');
    String text(original);
    text.replaceXML();
    EXPECT_TRUE(text.placeXML() == original);
}

}  // namespace
