#include <gtest/gtest.h>

#include <new>

#include "util/text/byte_string.h"
#include "util/text/string_array.h"

using namespace std::string_literals;

namespace {

using Fields = std::vector<String>;

TEST(SplitTest, KeepsOrDropsEmptyFields) {
    const struct {
        String text, separators;
        Fields kept, dropped;
    } cases[] = {
        {"", ",", {}, {}},
        {"a", ",", {"a"}, {"a"}},
        {",,a,,,b,,", ",", {"", "", "a", "", "", "b", "", ""}, {"a", "b"}},
        {"a;b,c", ";,", {"a", "b", "c"}, {"a", "b", "c"}},
        {"a,b", "", {"a,b"}, {"a,b"}},
        {String("a\0b\xE9z"s), String("\0\xE9"s), {"a", "b", "z"}, {"a", "b", "z"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.text.split(c.separators, false), c.kept) << c.text;
        EXPECT_EQ(c.text.split(c.separators, true), c.dropped) << c.text;
    }
    EXPECT_EQ(String(",,").split(",", true), Fields());
    EXPECT_THROW(String(",,").split(",", false), std::bad_alloc);
}

TEST(SplitByTagTest, LeadingTagGivesAnEmptyPieceTrailingGivesNone) {
    const struct {
        String text, tag;
        Fields pieces;
    } cases[] = {{"x--y----z--", "--", {"x", "y", "", "z"}},
                 {"<>a", "<>", {"", "a"}},
                 {"<>", "<>", {""}},
                 {"", "", {}},
                 {"abc", "", {"abc"}},
                 {"aaa", "aa", {"", "a"}},
                 {String("a\0\0b\0c"s), String("\0\0"s), {"a", String("b\0c"s)}}};
    for (const auto& c : cases)
        EXPECT_EQ(c.text.split_by_tag(c.tag), c.pieces) << c.text;
}

TEST(SqueezeTest, NormalisesWhiteSpaceHereAndInTheObject) {
    const struct {
        String text, squeezed;
    } cases[] = {{"  a \t b  ", "a b "}, {"   ", ""},         {"a\x01 b", "a  b"},
                 {"a \x01\rb", "a b"},   {"\x01\x02z", " z"}, {"\xA0z\x85 ", "\xA0z\x85 "}};
    for (const auto& c : cases) {
        String text(c.text);
        EXPECT_EQ(text.squeeze_spaces(), c.squeezed) << c.text;
        EXPECT_EQ(text, c.squeezed) << c.text;
    }
}

TEST(StringArrayTest, WritesAndReadsWhatTheFormatCanHold) {
    const struct {
        Fields list;
        String text;
        Fields read_back;
    } cases[] = {{{}, "", {}},
                 {{"x", "y"}, "x$y", {"x", "y"}},
                 {{"", "a", "", "b", ""}, "$a$$b$", {"a", "b"}},
                 {{"a$b", "c"}, "a$b$c", {"a", "b", "c"}},
                 {{String("a\0lost"s), "b"}, "a$b", {"a", "b"}}};
    for (const auto& c : cases) {
        EXPECT_EQ(serializeStrArray(c.list), c.text);
        EXPECT_EQ(deserializeStrArray(c.text), c.read_back) << c.text;
    }
}

}  // namespace
