#include <gtest/gtest.h>

#include <stdexcept>

#include "util/text/byte_string.h"

namespace {

TEST(XmlEscapeTest, EscapesAndDecodesInPlace) {
    const struct {
        const char *text, *escaped, *decoded;
    } cases[] = {
        {"a<b & 'c'>", "a&lt;b &amp; &apos;c&apos;&gt;", "a<b & 'c'>"},
        {"\"x<y\"", "\"x&lt;y\"", "\"x<y\""},
        {"\t&#x9;", "\t&amp;#x9;", "\t\t"},
        {"&amp;amp; &b", "&amp;amp;amp; &amp;b", "&amp; &b"},
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
    EXPECT_THROW(text.placeXML(), std::out_of_range);
    EXPECT_EQ(text, "") << "the first removal has taken it";
}

TEST(XmlEscapeTest, DecodesALargeTextOfEntitiesInOnePass) {
    const String original(std::uint64_t{1} << 22, '&');
    String text(original);
    text.replaceXML();
    EXPECT_TRUE(text.placeXML() == original);
}

}  // namespace
