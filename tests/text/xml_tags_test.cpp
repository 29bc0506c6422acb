#include "util/text/xml_tags.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

const char* const untouched = "untouched";

TEST(XmlTagsTest, AddsOneEscapedElement) {
    String document;
    EXPECT_EQ(UTIL_addTag(document, "a&b", "\"x\"y\""), 0);
    EXPECT_EQ(document, "<a&amp;b>\"x&quot;y\"</a&amp;b>");
    String whole("a\0b"s);
    EXPECT_EQ(UTIL_addTag(whole, whole, whole), 0);
    EXPECT_EQ(whole, "a\0b<a>a</a>"s) << "the document keeps what it has";
}

TEST(XmlTagsTest, ExtractsTheTextOfAnElementOrLeavesTheOutputAlone) {
    const struct {
        String document, tag, value;
    } cases[] = {{"<k a=\"1\">no</k><k>1&lt;2</k>", "k", ""},
                 {"<disk>a<b>c</b></k>", "k", "a"},
                 {"<a&amp;b>&lt;</a&amp;b>", "a&b", "<"},
                 {"x>v<", "", "v"},
                 {String("\0<k>\"a\0b\"</k>"s), "k", "\"a"},
                 {"<k>v</k>", "K", untouched},
                 {"<k>v", "k", untouched},
                 {"<k>\"</k>", "k", untouched}};
    for (const auto& c : cases) {
        String value = untouched;
        EXPECT_EQ(UTIL_extractTag(c.document, c.tag, value), c.value == untouched ? -1 : 0);
        EXPECT_EQ(value, c.value) << c.document;
    }
}

TEST(XmlTagsTest, ExtractsAnAttributeFromAnywhere) {
    const struct {
        String document, attribute, value;
    } cases[] = {{"<b y=\"2\"/><a y=\"1\"/>", "y", "2"},
                 {"<abc y = z \"&lt;\"", "y", "&lt;"},
                 {"a y=\"1\"", "y", untouched},
                 {"=<a y", "y", untouched},
                 {"\"<a y=", "y", untouched},
                 {"<a y=\"1", "y", untouched}};
    const String tag("a");
    for (const auto& c : cases) {
        String value = untouched;
        EXPECT_EQ(UTIL_XMLParserExtractTagValue(&c.document, &tag, &c.attribute, &value),
                  c.value == untouched ? -1 : 0);
        EXPECT_EQ(value, c.value) << c.document;
    }
}

TEST(XmlTagsTest, ExtractsContentTrimmedInFrontAndOnRequestBehind) {
    const struct {
        String document, content, trimmed;
    } cases[] = {{"<a k=\"v\">  <b/>  </a>", "<b/>  ", "<b/>"},
                 {"<a>\t\r\n &lt; x \n</a>", "&lt; x \n", "&lt; x"},
                 {"<abc>x</a>y</a>", "x", "x"},
                 {"x</a>", untouched, untouched},
                 {"</a><a>x</a>", untouched, untouched},
                 {"<a </a>", untouched, untouched}};
    const String tag("a");
    for (const auto& c : cases) {
        String content = untouched, trimmed = untouched;
        const int result = c.content == untouched ? -1 : 0;
        EXPECT_EQ(UTIL_XMLParserExtractTagXml(&c.document, &tag, &content, false), result);
        EXPECT_EQ(UTIL_XMLParserExtractTagXml(&c.document, &tag, &trimmed, true), result);
        EXPECT_EQ(content, c.content) << c.document;
        EXPECT_EQ(trimmed, c.trimmed) << c.document;
    }
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
