#include <gtest/gtest.h>

#include "util/text/byte_string.h"

using namespace std::string_literals;

namespace {

TEST(ReplaceTest, OddArgumentsAndEmbeddedNuls) {
    const std::string many(60, 'a'), some(10, 'a'), repetitive = std::string(40, 'a') + "ba";
    const struct {
        std::string text;
        const char *from, *to;
        std::string once, everywhere;
    } cases[] = {
        {"a-b-c", "-", nullptr, "ab-c", "abc"},
        {"aaaaa", "aa", "a", "aaaa", "aaa"},
        {"", "", "x", "x", ""},
        {"a-b\0c-d"s, "-", "+", "a+b", "a+b"},
        {"ab\0cd"s, "", "x", "xab", "ab\0cd"s},
        {"ab\0c"s, nullptr, "x", "ab\0c"s, "ab\0c"s},
        {"abc", "x", "y", "abc", "abc"},
        {std::string(3000, '-'), "-", "+", "+" + std::string(2999, '-'), std::string(3000, '+')},
        {many + repetitive + "x" + some + repetitive, repetitive.c_str(), "+",
         many + "+x" + some + repetitive, many + "+x" + some + "+"}};
    for (const auto& c : cases) {
        String once(c.text), everywhere(c.text);
        EXPECT_EQ(once.replace(c.from, c.to, String::SCOPE_FIRST), c.once) << c.text;
        EXPECT_EQ(everywhere.replace(c.from, c.to, String::scopeType(-7)), c.everywhere) << c.text;
        EXPECT_EQ(String(c.text).replace(c.from, c.to), c.everywhere) << c.text;
    }
}

TEST(ReplaceTest, ArgumentsMayPointIntoTheObjectAndLiteralsChooseTheFormMeant) {
    String s("ab-ab-ab");
    EXPECT_EQ(s.replace(s.c_str() + 6, s, String::SCOPE_ALL), "ab-ab-ab-ab-ab-ab-ab-ab-ab");
    EXPECT_EQ(s.replace(s, s.c_str() + 24, String::SCOPE_FIRST), "ab");
    EXPECT_EQ(s.replace(0, 1, "x"), "xb");
    EXPECT_EQ(s.replace("x", nullptr, String::SCOPE_ALL), "b");
    EXPECT_EQ(s.replace("b", String("+")), "+");
}

}  // namespace
