#include <gtest/gtest.h>

#include <new>
#include <random>

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
        {"a,b", ",", {"a", "b"}, {"a", "b"}},
        {"a,,b", ",", {"a", "", "b"}, {"a", "b"}},
        {",a", ",", {"", "a"}, {"a"}},
        {"a,", ",", {"a", ""}, {"a"}},
        {",,a,,,b,,", ",", {"", "", "a", "", "", "b", "", ""}, {"a", "b"}},
        {" a  b ", " ", {"", "a", "", "b", ""}, {"a", "b"}},
        {"a;b,c", ";,", {"a", "b", "c"}, {"a", "b", "c"}},
        {"a,b", "", {"a,b"}, {"a,b"}},
        {String("a\0b,c"s), ",", {String("a\0b"s), "c"}, {String("a\0b"s), "c"}},
        {String("a\0b"s), String("\0"s), {"a", "b"}, {"a", "b"}},
        {"a\xE9\xFFz", "\xFF\xE9", {"a", "", "z"}, {"a", "z"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.text.split(c.separators, false), c.kept) << c.text;
        EXPECT_EQ(c.text.split(c.separators, true), c.dropped) << c.text;
    }
}

TEST(SplitTest, OnlySeparators) {
    EXPECT_EQ(String(",,,").split(",", true), Fields());
    EXPECT_THROW(String(",,,").split(",", false), std::bad_alloc);
    EXPECT_THROW(String(",").split(",", false), std::bad_alloc);
}

// The described walk, step by step, as a model.
Fields split_as_described(const std::string& text, const std::string& separators, bool skip_empty) {
    Fields fields;
    if (text.empty()) return fields;
    std::size_t p = 0;
    if (!skip_empty) {
        p = text.find_first_not_of(separators);
        fields.insert(fields.end(), p, String());
    }
    for (std::size_t t; (t = text.find_first_not_of(separators, p)) != std::string::npos;) {
        if (!skip_empty && t > p + 1) fields.insert(fields.end(), t - p - 1, String());
        p = std::min(text.find_first_of(separators, t), text.size());
        fields.emplace_back(text.data() + t, p - t);
    }
    if (!skip_empty) fields.insert(fields.end(), text.size() - p, String());
    return fields;
}

TEST(SplitTest, AgreesWithTheDescribedWalkOnRandomTexts) {
    const unsigned seed = 20240607;
    std::mt19937 random(seed);
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 12, ' ');
        for (char& c : text)
            c = "ab,;\0\xE9"[random() % 6];
        const std::string separators = ",;\0"s.substr(0, random() % 4);
        const bool skip_empty = random() % 2;
        if (!skip_empty && !text.empty() &&
            text.find_first_not_of(separators) == std::string::npos) {
            continue;
        }
        ASSERT_EQ(String(text).split(separators, skip_empty),
                  split_as_described(text, separators, skip_empty))
            << "seed " << seed << " round " << round << " text " << testing::PrintToString(text);
    }
}

TEST(SplitByTagTest, LeadingTagGivesAnEmptyPieceTrailingGivesNone) {
    const struct {
        String text, tag;
        Fields pieces;
    } cases[] = {
        {"x--y----z--", "--", {"x", "y", "", "z"}},
        {"a<>b<>", "<>", {"a", "b"}},
        {"<>a", "<>", {"", "a"}},
        {"<>", "<>", {""}},
        {"abc", "<>", {"abc"}},
        {"", "<>", {}},
        {"", "", {}},
        {"abc", "", {"abc"}},
        {"aaa", "aa", {"", "a"}},
        {String("a\0\0b\0c"s), String("\0\0"s), {"a", String("b\0c"s)}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.text.split_by_tag(c.tag), c.pieces) << c.text;
}

TEST(SqueezeTest, NormalisesWhiteSpace) {
    const struct {
        String text, squeezed;
    } cases[] = {
        {"", ""},
        {"   ", ""},
        {"  a \t b  ", "a b "},
        {"a\r\nb", "a b"},
        {"a\x01 b", "a  b"},
        {"a \x01"
         "b",
         "a b"},
        {"\x01"
         "a",
         "a"},
        {"\x01\x02"
         "a",
         " a"},
        {"a\x7F"
         "b",
         "a b"},
        {"\xA0"
         "a\x85\xE9 ",
         "\xA0"
         "a\x85\xE9 "},
        {String("a  b\0c"s), "a b"},
        {String("\0abc"s), ""},
    };
    for (const auto& c : cases) {
        String text(c.text);
        EXPECT_EQ(text.squeeze_spaces(), c.squeezed) << c.text;
        EXPECT_EQ(text, c.squeezed) << "the object changes too";
    }
}

TEST(StringArrayTest, WritesAndReadsWhatTheFormatCanHold) {
    const struct {
        Fields list;
        String text;
        Fields read_back;
    } cases[] = {
        {{}, "", {}},
        {{"x", "y"}, "x$y", {"x", "y"}},
        {{"a", "", "b"}, "a$$b", {"a", "b"}},
        {{""}, "", {}},
        {{"a$b", "c"}, "a$b$c", {"a", "b", "c"}},
        {{String("a\0lost"s), "b"}, "a$b", {"a", "b"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(serializeStrArray(c.list), c.text);
        EXPECT_EQ(deserializeStrArray(c.text), c.read_back) << c.text;
    }
    EXPECT_EQ(deserializeStrArray("$x$$y$"), (Fields{"x", "y"}));
}

}  // namespace
