#include "util/text/xml_tags.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

TEST(XmlTagsTest, AddsOneEscapedElement) {
    String document;
    EXPECT_EQ(UTIL_addTag(document, "a&b", "\"x\"y\""), 0);
    EXPECT_EQ(document, "<a&amp;b>\"x&quot;y\"</a&amp;b>");
    String whole("a\0b"s);
    EXPECT_EQ(UTIL_addTag(whole, whole, whole), 0);
    EXPECT_EQ(whole, "a\0b<a>a</a>"s) << "the document keeps what it has";
}

// What the model of the fuzz target leaves out.
TEST(XmlTagsTest, ExtractTag_TextWithNulOrLoneQuote_EndsAtTheNulOrFails) {
    String value = "untouched";
    EXPECT_EQ(UTIL_extractTag("<k>\"</k>", "k", value), -1);
    EXPECT_EQ(value, "untouched");
    EXPECT_EQ(UTIL_extractTag(String("\0<k>\"a\0b\"</k>"s), "k", value), 0);
    EXPECT_EQ(value, "\"a");
}

TEST(XmlTagsTest, NullPointersFail) {
    String s("<a b=\"c\"></a>");
    for (const int missing : {0, 1, 2, 3}) {
        String* p[] = {&s, &s, &s, &s};
        p[missing] = nullptr;
        EXPECT_EQ(UTIL_XMLParserExtractTagValue(p[0], p[1], p[2], p[3]), -1);
        EXPECT_EQ(UTIL_XMLParserExtractTagXml(p[0], p[1], missing < 3 ? p[2] : p[3], true), -1);
    }
}

}  // namespace
