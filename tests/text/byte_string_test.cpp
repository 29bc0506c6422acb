#include "util/text/byte_string.h"
#include "support/test.h"

#include <atomic>
#include <climits>
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
    EXPECT_EQ(String(0) + String(INT_MIN) + ' ' + String(UINT_MAX), "0-2147483648 4294967295");
    EXPECT_EQ(String(1.5), "1.500000");
    EXPECT_EQ(String('x') + String(3, 'z') + String(bytes.c_str()) + String::eol, "xzzzab\n");
    for (const String& whole : {with_nul, String(ExtString(bytes)), String(bytes.data(), 5)})
        EXPECT_EQ(whole.str(), bytes);
#ifdef _WIN32
    EXPECT_EQ(String(4000000000ul), "4000000000");
#endif
    EXPECT_EQ(String('\0').size(), 1u);
    const char* const none = nullptr;
    EXPECT_EQ(String::format(none), "");
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

TEST(StringTest, ReplaceTakesItsOwnBytesAndTheFormThatLiteralsMean) {
    String s("ab-ab-ab");
    EXPECT_EQ(s.replace(s.c_str() + 6, s, String::SCOPE_ALL), "ab-ab-ab-ab-ab-ab-ab-ab-ab");
    EXPECT_EQ(s.replace(s, s.c_str() + 24, String::SCOPE_FIRST), "ab");
    EXPECT_EQ(s.replace(0, 1, "x"), "xb");
    EXPECT_EQ(s.replace("x", nullptr, String::SCOPE_ALL), "b");
    EXPECT_EQ(s.replace("b", String("+")), "+");
}

TEST(FormatTest, ThreadsDoNotMixTheirTexts) {
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t, &wrong] {
            for (int width = 10 + t; width < 9000; width += 37) {
                const String text = String::format("%*d", width, t);
                wrong += text != String::pad(width - 1) + String(t);
                wrong += String("<" + text).replaceXML().placeXML() != "<" + text;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
