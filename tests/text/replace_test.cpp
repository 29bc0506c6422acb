#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "util/text/byte_string.h"

using namespace std::string_literals;

namespace {

TEST(ReplaceTest, OddArgumentsAndEmbeddedNuls) {
    const struct {
        std::string text;
        const char *from, *to;
        std::string once, everywhere;
    } cases[] = {
        {"a-b-c", "-", nullptr, "ab-c", "abc"},
        {"aaaaa", "aa", "a", "aaaa", "aaa"},
        {"", "", "x", "x", ""},
        {"a-b\0c-d"s, "-", "+", "a+b", "a+b"},
        {"ab\0cd"s, "x", "y", "ab", "ab"},
        {"ab\0cd"s, "", "x", "xab", "ab\0cd"s},
        {"ab\0cd"s, nullptr, "x", "ab\0cd"s, "ab\0cd"s},
    };
    for (const auto& c : cases) {
        const String source(c.text);
        String once(source), everywhere(source);
        EXPECT_EQ(&once.replace(c.from, c.to, String::SCOPE_FIRST), &once);
        EXPECT_EQ(once, c.once) << c.text;
        EXPECT_EQ(everywhere.replace(c.from, c.to, String::scopeType(-7)), c.everywhere) << c.text;
        EXPECT_EQ(source.replace(c.from, c.to), c.everywhere) << c.text;
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

std::string replaced_as_described(const std::string& text, const char* from, const char* to) {
    std::string result;
    const char* rest = text.c_str();
    for (const char* hit; (hit = std::strstr(rest, from)); rest = hit + std::strlen(from)) {
        result.append(rest, hit);
        result += to;
    }
    return result + rest;
}

TEST(ReplaceTest, AgreesWithTheDescribedWalkOnRandomTexts) {
    const unsigned seed = 20240608;
    std::mt19937 random(seed);
    const auto random_text = [&](std::size_t limit) {
        std::string text(random() % limit, ' ');
        for (char& c : text)
            c = "aaaaabbb\xE9\0"[random() % 10];
        return text;
    };
    for (int round = 0; round < 20000; ++round) {
        const std::string text = random_text(24), from = "a" + random_text(4), to = random_text(4);
        ASSERT_EQ(String(text).replace(from.c_str(), to.c_str()),
                  replaced_as_described(text, from.c_str(), to.c_str()))
            << "seed " << seed << " round " << round << " text " << testing::PrintToString(text);
    }
}

}  // namespace
