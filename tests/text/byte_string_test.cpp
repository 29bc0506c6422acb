#include "util/text/byte_string.h"

#include <gtest/gtest.h>

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
    const struct {
        String made;
        std::string text;
    } cases[] = {{String(), ""},
                 {String('\0'), "\0"s},
                 {String(0), "0"},
                 {String(-7), "-7"},
                 {String(4000000000u), "4000000000"},
                 {String(1.5), "1.500000"},
#ifdef _WIN32
                 {String(4000000000ul), "4000000000"},
#endif
                 {String(nullptr), ""},
                 {String(nullptr, 5), ""},
                 {String(3, 'z'), "zzz"},
                 {String("a\0b", 3), "a\0b"s},
                 {String(bytes.c_str()), "ab"},
                 {with_nul, bytes},
                 {String(String(with_nul)), bytes},
                 {String(ExtString(bytes)), bytes},
                 {String(ExtString(nullptr)), ""},
                 {String::eol, "\n"},
                 {String::pad(3), "   "},
                 {String::pad(-3), "   "},
                 {String::pad(0), ""}};
    for (const auto& c : cases)
        EXPECT_EQ(c.made.str(), c.text);
    EXPECT_STREQ(String("text"), "text");
}

template <typename Text>
class BothStringsTest : public testing::Test {};
using BothStrings = testing::Types<String, ExtString>;
TYPED_TEST_SUITE(BothStringsTest, BothStrings);

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

    const TypeParam target(std::move(whole));
    EXPECT_EQ(target.str(), bytes);
    EXPECT_TRUE(whole.empty());
    whole += TypeParam("y");
    EXPECT_EQ(whole.str(), "y") << "usable after moving from it";
}

TEST(StringTest, CharacterComparisonSeesOnlyTheFirstByte) {
    EXPECT_EQ(String("abc") == 'a', 1);
    EXPECT_EQ(String("abc") != 'a', 0);
    EXPECT_EQ(String("abc") == 'b', 0);
    EXPECT_EQ(String("abc") != 'b', 1);
    EXPECT_EQ(String("") == '\0', 0);
    EXPECT_EQ(String("") != 'x', 0);
}

TEST(StringTest, ComparesContentsNotPointers) {
    const String a("same"), b("same");
    EXPECT_TRUE(a == b && a == "same" && "same" == a && a == "same"s && "same"s == a);
    EXPECT_FALSE(a != b || a != "same" || "same" != a || a != "same"s || "same"s != a);
    EXPECT_TRUE(with_nul != "ab" && with_nul == String(bytes) && with_nul == bytes);
    EXPECT_TRUE(String() == static_cast<const char*>(nullptr));
    EXPECT_TRUE(String("a") < String("\xE9") && String("a") < "ab" && "B" < String("a"))
        << "bytes compare as unsigned";
    EXPECT_TRUE(String("a") < "b"s && "a"s < String("b"));
    EXPECT_TRUE(String("b") > String("a") && String("b") >= "b" && "a"s <= String("a"));
    EXPECT_TRUE(String("x") == std::string_view("x") && 'x' == String("xyz"));
    EXPECT_EQ(std::unordered_set<String>({a, b}).size(), 1u);
    EXPECT_EQ((std::set<std::vector<String>>{{"a"}, {"a"}}).size(), 1u);
}

TEST(StringTest, JoinsAndPrints) {
    EXPECT_EQ(String("a") + String("b") + "c" + 'd', "abcd");
    EXPECT_EQ("x" + String("y"), "xy");
    EXPECT_EQ(String("a") + static_cast<const char*>(nullptr), "a");
    std::ostringstream out;
    out << with_nul;
    EXPECT_EQ(out.str(), bytes);
    String self("ab");
    self += self;
    EXPECT_EQ(self, "abab");
}

TEST(StringTest, ReadsNumbersAsTheRuntimeDoes) {
    const struct {
        const char* text;
        int value;
    } cases[] = {{"", 0},
                 {" \t\n\v\f\r-42x", -42},
                 {"+7", 7},
                 {"- 7", 0},
                 {"--7", 0},
                 {"x7", 0},
                 {"2147483647", INT_MAX},
                 {"2147483648", INT_MIN},
                 {"99999999999", 1215752191},
                 {"\xA0\x35", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(String(c.text).to_int(), c.value) << c.text;
}

TEST(StringTest, FindsFromAPosition) {
    EXPECT_EQ(String("abcabc").first("bc", 2), 4u);
    EXPECT_EQ(String("abc").first("", 3), 3u);
    EXPECT_EQ(String("abc").first("bc", 999), String::npos);
    EXPECT_EQ(String("abcabc").first('c', 3), 5u);
    EXPECT_EQ(String("abcabc").last('a'), 3u);
    EXPECT_EQ(String("").last('a'), ~std::uint64_t{0});
    EXPECT_EQ(with_nul.first('\0', 0), 2u);
    EXPECT_EQ(with_nul.first("cd", 0), 3u) << "the search goes past an embedded NUL";
    EXPECT_EQ(with_nul.last('d'), 4u);

    const ExtString e("a-Xy\xE9z");
    EXPECT_EQ(e.find("xY", 0, 1), 2u);
    EXPECT_EQ(e.find("xY", 0, 0), ExtString::npos);
    EXPECT_EQ(e.find("\xE9Z", 3, 1), 4u);
    EXPECT_EQ(e.find("a", 1, 1), ExtString::npos);
    EXPECT_EQ(e.find("a", 7, 1), ExtString::npos);
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
    EXPECT_EQ(s.replace(0, 1, nullptr), "x-end");
    EXPECT_EQ(s.replace(0, 1, nullptr, 9), "-end");
    EXPECT_EQ(s.replace(0, 1, s, 4), "-endend") << "from its own contents";
    EXPECT_EQ(&s.prepend(s), &s);
    EXPECT_EQ(s, "-endend-endend");
    EXPECT_EQ(String("x").prepend(with_nul).str(), bytes + "x");
}

TEST(StringTest, PositionsBeyondTheEndRaiseOneMessage) {
    String s("abc");
    const std::function<void()> calls[] = {
        [&] { s.substr(4); },
        [&] { s.substr(String::npos, 1); },
        [&] { s.replace(4, 0, "x"); },
        [&] { s.replace(4, 0, "x", 1); },
        [&] { ExtString("abc").substr(4, 1); },
    };
    for (const auto& call : calls) {
        try {
            call();
            ADD_FAILURE() << "nothing raised by call " << &call - calls;
        } catch (const std::out_of_range& e) {
            EXPECT_STREQ(e.what(), "invalid string position");
        }
    }
    EXPECT_EQ(s, "abc");
}

TEST(StringTest, LettersAndKindsOfBytes) {
    EXPECT_EQ(with_nul.to_upper().str(), "AB");
    EXPECT_EQ(String("AB\0CD\xE9"s).to_lower().str(), "ab");
    ExtString whole(bytes);
    whole.upper();
    EXPECT_EQ(whole.str(), "AB\0CD"s) << "in place all of it changes";
    whole.lower();
    EXPECT_EQ(whole.str(), bytes);
    EXPECT_TRUE(String("a\0\xE9"s).isAscii()) << "bytes after a NUL are not looked at";
    EXPECT_TRUE(with_nul.hasUnprintable()) << "a NUL inside is unprintable";
    EXPECT_TRUE(String("\xE9").hasUnprintable() && !String("\xE9").isAscii());
    EXPECT_FALSE(String(" \x7F").hasUnprintable());
}

TEST(StringTest, TrimsASetToWhichNulAlwaysBelongs) {
    EXPECT_EQ(String("  x y  ").trim(" "), "x y");
    EXPECT_EQ(String("xxx").trim("x"), "");
    EXPECT_EQ(String(" x ").trim(nullptr), " x ");
    EXPECT_EQ(String("\0x\0y\0\0"s).trim("").str(), "x\0y"s);
}

TEST(StringTest, HashKeepsItsStoredValues) {
    EXPECT_EQ(String("").hash(), 0u);
    EXPECT_EQ(String("a").hash(), 0x41u);
    EXPECT_EQ(String("abcd").hash(), 0x646362E1u);
    EXPECT_EQ(String("hello").hash(), 0x8D8CB962u);
    EXPECT_EQ(String("\xFF").hash(), 0xFFFFFFDFu);
    EXPECT_EQ(String("ab\xE9").hash(), 0xFFFFFF89u);
}

TEST(FormatTest, PrintsWhatTheRuntimePrints) {
    EXPECT_EQ(String::format("%s-%03d|%-4c|%x|%5.1f%%", "disk", 7, 'q', 0xBEEFu, 2.75),
              "disk-007|q   |beef|  2.8%");
    EXPECT_EQ(String::format("a%cb", 0), "a") << "the text ends at its first NUL";
    const char* const none = nullptr;
    EXPECT_EQ(String::format(none), "");
    for (const int size : {1023, 1024, 4096, 20480, 24576, 126975, 126976, 300000}) {
        const auto blanks = static_cast<std::uint64_t>(size - 1);
        EXPECT_TRUE(String::format("%*s", size, "x") == String(blanks, ' ') + 'x') << size;
    }
    EXPECT_EQ(String::format("%d", 5), "5");
}

TEST(FormatTest, ThreadsTakeTurns) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(8);
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t, &wrong] {
            for (int i = 0; i < 300; ++i) {
                const int width = 10 + (i * 37 + t * 911) % 9000;
                const String text = String::format("%*d", width, t);
                if (text != String::pad(width - 1) + String(t)) ++wrong[t];
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(8));
}

}  // namespace
