#include <gtest/gtest.h>

#include <new>

#include "util/text/byte_string.h"
#include "util/text/string_array.h"

using namespace std::string_literals;

namespace {

using Fields = std::vector<String>;

TEST(SplitTest, SeparatorsAlone_RaiseUnlessEmptyFieldsAreDropped) {
    EXPECT_EQ(String(",,").split(",", true), Fields());
    for (std::uint64_t n = 1; n < 200; ++n) {  // beyond a line of the processor's, too
        const String separators(n, ',');
        EXPECT_THROW(separators.split(",", false), std::bad_alloc) << n;
        EXPECT_EQ((separators + "x").split(",", false).size(), n + 1);
        EXPECT_EQ((separators + "x").split(",", true), Fields{"x"}) << n;
    }
}

TEST(SplitByTagTest, LeadingTagGivesAnEmptyPieceTrailingGivesNone) {
    const struct {
        String text, tag;
        Fields pieces;
    } cases[] = {{"x--y----z--", "--", {"x", "y", "", "z"}},
                 {"<>a", "<>", {"", "a"}},
                 {"abc", "", {"abc"}},
                 {"aaa", "aa", {"", "a"}},
                 {String("a\0\0b\0c"s), String("\0\0"s), {"a", String("b\0c"s)}}};
    for (const auto& c : cases)
        EXPECT_EQ(c.text.split_by_tag(c.tag), c.pieces) << c.text;
}

TEST(SqueezeTest, NormalisesWhiteSpaceHereAndInTheObject) {
    String text("  a\x01 b \x01\t\rc\xA0\x85 \n");
    EXPECT_EQ(text.squeeze_spaces(), "a  b  c\xA0\x85 ");
    EXPECT_EQ(text, "a  b  c\xA0\x85 ");
}

TEST(StringArrayTest, WritesAndReadsWhatTheFormatCanHold) {
    const Fields list = {"", "a", "", String("b\0lost"s), "c$d", ""};
    EXPECT_EQ(serializeStrArray(list), "$a$$b$c$d$");
    EXPECT_EQ(deserializeStrArray("$a$$b$c$d$"), (Fields{"a", "b", "c", "d"}));
    EXPECT_EQ(serializeStrArray({}), "");
}

}  // namespace
