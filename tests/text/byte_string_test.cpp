#include "util/text/byte_string.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <functional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <unordered_set>

using namespace std::string_literals;
using extstl::ExtString;

namespace {

const std::string bytes = "ab\0cd"s;
const String with_nul(bytes);

TEST(StringTest, ConstructsFromEveryKindOfValue) {
    EXPECT_TRUE(String().empty() && String(nullptr).empty() && String(nullptr, 5).empty());
    EXPECT_TRUE(ExtString(nullptr).empty());
    EXPECT_EQ(String(-7) + ' ' + String(4000000000u) + ' ' + String(1.5), "-7 4000000000 1.500000");
    EXPECT_EQ(String('x') + String(3, 'z') + String(bytes.c_str()) + String::eol, "xzzzab\n");
    for (const String& whole : {with_nul, String(ExtString(bytes)), String(bytes.data(), 5)})
        EXPECT_EQ(whole.str(), bytes);
#ifdef _WIN32
    EXPECT_EQ(String(4000000000ul), "4000000000");
#endif
    EXPECT_EQ(String('\0').size(), 1u);
    EXPECT_EQ(String::pad(3) + "|" + String::pad(-3) + "|" + String::pad(0), "   |   |");
    EXPECT_STREQ(String("text"), "text");
}

template <typename Text>
class BothStringsTest : public testing::Test {};
using BothStrings = testing::Types<String, ExtString>;
TYPED_TEST_SUITE(BothStringsTest, BothStrings, );  // the comma is for Clang

TYPED_TEST(BothStringsTest, AssigningAndAppendingStopAtNul) {
    TypeParam whole(bytes);
    TypeParam assigned, appended("x"), moved;
    assigned = whole;
    appended += whole;
    moved = TypeParam(whole);
    EXPECT_EQ(assigned.str(), "ab");
    EXPECT_EQ(appended.str(), "xab");
    EXPECT_EQ(moved.str(), "ab");

    TypeParam& same = whole;
    whole = same;
    EXPECT_EQ(whole.str(), bytes) << "self-assignment changes nothing";
    whole = std::move(same);
    EXPECT_EQ(whole.str(), bytes) << "nor does moving onto itself";

    EXPECT_EQ(TypeParam(std::move(whole)).str(), bytes);
    whole += TypeParam("y");
    EXPECT_EQ(whole.str(), "y") << "usable after moving from it";
}

TEST(StringTest, CharacterComparisonSeesOnlyTheFirstByte) {
    const String s("abc");
    EXPECT_TRUE((s == 'a') == 1 && (s != 'a') == 0 && (s == 'b') == 0 && (s != 'b') == 1);
    EXPECT_TRUE((String() == '\0') == 0 && (String() != 'x') == 0) << "the empty string is neither";
}

TEST(StringTest, ComparesContentsNotPointers) {
    const String a("same"), b("same");
    EXPECT_TRUE(a == b && a == "same" && "same" == a && a == "same"s && "same"s == a);
    EXPECT_FALSE(a != b || a != "same" || "same" != a || a != "same"s || "same"s != a);
    EXPECT_TRUE(with_nul != "ab" && with_nul == bytes && String() == nullptr && nullptr != a);
    EXPECT_TRUE(String("a") < String("\xE9") && "B" < String("a")) << "bytes compare as unsigned";
    EXPECT_TRUE(String("a") < "b"s && "a"s < String("b") && String("b") > String("a"));
    EXPECT_TRUE(String("b") >= "b" && "a"s <= String("a") && 'x' == String("xyz"));
    EXPECT_EQ(std::unordered_set<String>({a, b}).size(), 1u);
    EXPECT_EQ((std::set<std::vector<String>>{{"a"}, {"a"}}).size(), 1u);
}

template <typename A, typename B, typename = void>
constexpr bool adds = false;
template <typename A, typename B>
constexpr bool adds<A, B, std::void_t<decltype(std::declval<A>() + std::declval<B>())>> = true;
template <typename... Numbers>
constexpr bool adds_any = (... || (adds<Numbers, String> || adds<String, Numbers>));
static_assert(adds_any<char> && !adds_any<int, bool, double, unsigned, std::uint64_t, std::byte>);

TEST(StringTest, JoinsAndPrints) {
    EXPECT_EQ("x" + (String("a") + String("b")) + "c" + 'd', "xabcd");
    std::ostringstream out;
    out << with_nul;
    EXPECT_EQ(out.str(), bytes);
    String self("ab");
    EXPECT_EQ(self += self, "abab");
}

TEST(StringTest, ReadsNumbersAsTheRuntimeDoes) {
    std::vector<int> values;
    for (const char* text : {"", " \t\n\v\f\r-42x", "+7", "- 7", "--7", "x7", "\xA0\x35",
                             "2147483648", "99999999999"}) {
        values.push_back(String(text).to_int());
    }
    EXPECT_EQ(values, (std::vector<int>{0, -42, 7, 0, 0, 0, 0, INT_MIN, 1215752191}));
}

TEST(StringTest, FindsFromAPosition) {
    EXPECT_EQ(String("abcabc").first('c', 3), 5u);
    EXPECT_EQ(String("abcabc").last('a'), 3u);
    EXPECT_EQ(String("").last('a'), ~std::uint64_t{0});
    EXPECT_EQ(with_nul.first("cd", 0), 3u) << "the search goes past an embedded NUL";

    const ExtString e("a-Xy\xE9z");
    EXPECT_EQ(e.find("xY", 0, 0), ExtString::npos);
    EXPECT_EQ(e.find("a", 7, 1), ExtString::npos);
    EXPECT_EQ(e.find("", e.size(), 1), e.size());
    EXPECT_EQ(ExtString("aabAaAbB").find("AaaBb", 0, 1), 3u);
}

TEST(StringTest, CutsAndReplacesWithinItsLength) {
    String s("abc");
    EXPECT_EQ(s.substr(3), "");
    EXPECT_EQ(s.substr(1, 100), "bc");
    EXPECT_EQ(with_nul.substr(1, 3).str(), "b\0c"s);
    EXPECT_EQ(ExtString("abc").substr(1, 1).str(), "b");

    EXPECT_EQ(s.replace(1, 1, "xyz", 2), "axyc");
    EXPECT_EQ(s.replace(2, 100, "-"), "ax-");
    EXPECT_EQ(s.replace(3, 0, "end"), "ax-end");
    EXPECT_EQ(s.replace(0, 2, nullptr, 9), "-end");
    EXPECT_EQ(s.replace(0, 1, s, 4), "-endend") << "from its own contents";
    EXPECT_EQ(&s.prepend(s), &s);
    EXPECT_EQ(s, "-endend-endend");
    EXPECT_EQ(String("x").prepend(with_nul).str(), bytes + "x");
}

TEST(StringTest, PositionsBeyondTheEndRaiseOneMessage) {
    String s("abc");
    const std::function<void()> calls[] = {
        [&] { s.substr(4); }, [&] { s.substr(String::npos, 1); }, [&] { s.replace(4, 0, "x"); },
        [&] { s.replace(4, 0, "x", 1); }, [&] { ExtString("abc").substr(4, 1); }};
    for (const auto& call : calls) {
        try {
            call();
            ADD_FAILURE() << "nothing raised by call " << &call - calls;
        } catch (const std::out_of_range& e) {
            EXPECT_STREQ(e.what(), "invalid string position");
        }
    }
}

TEST(StringTest, SomeMembersStopAtNulSomeDoNot) {
    ExtString whole("aB\0cD"s);
    whole.upper();
    EXPECT_EQ(whole.str(), "AB\0CD"s);
    whole.lower();
    EXPECT_EQ(whole.str(), bytes);
    EXPECT_EQ(String(" x ").trim(nullptr), " x ");
}

TEST(StringTest, HashKeepsItsStoredValues) {
    std::vector<std::uint32_t> hashes;
    for (const char* text : {"", "a", "abcd", "hello", "\xFF", "ab\xE9"})
        hashes.push_back(String(text).hash());
    EXPECT_EQ(hashes, (std::vector<std::uint32_t>{0, 0x41, 0x646362E1, 0x8D8CB962, 0xFFFFFFDF,
                                                  0xFFFFFF89}));
}

TEST(FormatTest, PrintsWhatTheRuntimePrints) {
    EXPECT_EQ(String::format("%s-%03d|%-4c|%x|%5.1f%%", "disk", 7, 'q', 0xBEEFu, 2.75),
              "disk-007|q   |beef|  2.8%");
    EXPECT_EQ(String::format("a%cb%c", 0, 0), "a") << "the text ends at its first NUL";
    const char* const none = nullptr;
    EXPECT_EQ(String::format(none), "");
    EXPECT_EQ(String::format("%d", 5), "5");
}

TEST(FormatTest, ThreadsDoNotMixTheirTexts) {
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t, &wrong] {
            for (int width = 10 + t; width < 9000; width += 37) {
                const String text = String::format("%*d", width, t);
                if (text != String::pad(width - 1) + String(t)) ++wrong;
                if (String("<" + text).replaceXML().placeXML() != "<" + text) ++wrong;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
