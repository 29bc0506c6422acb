#include "util/text/xml_tags.h"
#include "support/test.h"

namespace {

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
