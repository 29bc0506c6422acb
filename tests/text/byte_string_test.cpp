#include "util/text/byte_string.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <functional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <unordered_set>

using namespace std::string_literals;
using extstl::ExtString;

namespace {

const String with_nul("ab\0cd", 5);

TEST(StringTest, ConstructsFromEveryKindOfLiteral) {
    EXPECT_EQ(String().size(), 0u);
    EXPECT_EQ(String('x'), "x");
    EXPECT_EQ(String('\0').size(), 1u);
    EXPECT_EQ(String(0), "0");
    EXPECT_EQ(String(-7), "-7");
    EXPECT_EQ(String(INT_MIN), "-2147483648");
    EXPECT_EQ(String(4000000000u), "4000000000");
#ifdef _WIN32
    EXPECT_EQ(String(4000000000ul), "4000000000");
#endif
    EXPECT_EQ(String(1.5), "1.500000");
    EXPECT_EQ(String(1e300).size(), 301u + 7u);
    EXPECT_EQ(String("text"), "text");
    EXPECT_EQ(String(nullptr), "");
    EXPECT_EQ(String(nullptr, 5), "");
    EXPECT_EQ(String("a\0b", 3).str(), "a\0b"s);
    EXPECT_EQ(String(3, 'z'), "zzz");
    EXPECT_EQ(String("a\0b"s).size(), 3u);
    EXPECT_EQ(String::eol, "\n");
    EXPECT_EQ(String::eol.size(), 1u);
    EXPECT_EQ(ExtString(nullptr).size(), 0u);
    EXPECT_STREQ(String("text"), "text");
}

TEST(StringTest, CopyingKeepsEveryByteAssigningAndAppendingStopAtNul) {
    const ExtString base("ab\0cd"s);
    EXPECT_EQ(String(with_nul).size(), 5u);
    EXPECT_EQ(String(base).size(), 5u);
    EXPECT_EQ(String(String(with_nul)).size(), 5u);

    String assigned, appended("x"), moved;
    assigned = with_nul;
    appended += with_nul;
    moved = String(with_nul);
    EXPECT_EQ(assigned.str(), "ab");
    EXPECT_EQ(appended.str(), "xab");
    EXPECT_EQ(moved.str(), "ab");

    ExtString ext_assigned, ext_appended("x"), ext_moved;
    ext_assigned = base;
    ext_appended += base;
    ext_moved = ExtString(base);
    EXPECT_EQ(ext_assigned.str(), "ab");
    EXPECT_EQ(ext_appended.str(), "xab");
    EXPECT_EQ(ext_moved.str(), "ab");

    String self(with_nul);
    String& same = self;
    self = same;
    EXPECT_EQ(self.size(), 5u) << "self-assignment changes nothing";
    self = std::move(same);
    EXPECT_EQ(self.size(), 5u) << "nor does moving onto itself";
}

TEST(StringTest, MovedFromIsEmptyAndUsable) {
    String source(100, 'x');
    const String target(std::move(source));
    EXPECT_EQ(target.size(), 100u);
    EXPECT_EQ(source, "");
    source += 'y';
    EXPECT_EQ(source, "y");
}

TEST(StringTest, CharacterComparisonSeesOnlyTheFirstByte) {
    EXPECT_EQ(String("abc") == 'a', 1);
    EXPECT_EQ(String("abc") != 'a', 0);
    EXPECT_EQ(String("abc") == 'b', 0);
    EXPECT_EQ(String("abc") != 'b', 1);
    EXPECT_EQ(String("") == 'x', 0);
    EXPECT_EQ(String("") != 'x', 0);
    EXPECT_EQ(String("") == '\0', 0);
}

TEST(StringTest, ComparesContentsNotPointers) {
    const String a("same"), b("same");
    EXPECT_TRUE(a == b && a == "same" && "same" == a && a == "same"s && "same"s == a);
    EXPECT_FALSE(a != b || a != "same" || "same" != a || a != "same"s || "same"s != a);
    EXPECT_TRUE(with_nul != "ab" && with_nul == String("ab\0cd", 5) && with_nul == "ab\0cd"s);
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
    EXPECT_EQ(out.str(), "ab\0cd"s);
    String self("ab");
    self += self;
    EXPECT_EQ(self, "abab");
}

TEST(StringTest, ReadsNumbersAsTheRuntimeDoes) {
    const struct {
        const char* text;
        int value;
    } cases[] = {
        {"", 0},
        {"42", 42},
        {" \t\n\v\f\r-42x", -42},
        {"+7", 7},
        {"- 7", 0},
        {"--7", 0},
        {"x7", 0},
        {"2147483647", INT_MAX},
        {"2147483648", INT_MIN},
        {"-2147483648", INT_MIN},
        {"99999999999", 1215752191},
        {"\xA0"
         "5",
         0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(String(c.text).to_int(), c.value) << c.text;
        EXPECT_EQ(std::atoi(c.text), c.value) << c.text;
    }
}

TEST(StringTest, FindsFromAPosition) {
    const String s("abcabc");
    EXPECT_EQ(s.first("bc", 0), 1u);
    EXPECT_EQ(s.first("bc", 2), 4u);
    EXPECT_EQ(s.first("bc", 5), String::npos);
    EXPECT_EQ(s.first("bc", 999), String::npos);
    EXPECT_EQ(s.first("", 6), 6u);
    EXPECT_EQ(s.first('c', 3), 5u);
    EXPECT_EQ(s.first('x', 0), String::npos);
    EXPECT_EQ(s.last('a'), 3u);
    EXPECT_EQ(s.last('x'), String::npos);
    EXPECT_EQ(with_nul.first('\0', 0), 2u);
    EXPECT_EQ(with_nul.first("cd", 0), 3u) << "the search goes past an embedded NUL";
    EXPECT_EQ(with_nul.last('d'), 4u);
    EXPECT_EQ(String("").last('a'), ~std::uint64_t{0});

    const ExtString e("a-Xy\xE9z");
    EXPECT_EQ(e.find("xY", 0, 1), 2u);
    EXPECT_EQ(e.find("xY", 0, 0), ExtString::npos);
    EXPECT_EQ(e.find("\xE9Z", 3, 1), 4u);
    EXPECT_EQ(e.find("a", 1, 1), ExtString::npos);
}

TEST(StringTest, CutsAndReplacesWithinItsLength) {
    String s("abc");
    EXPECT_EQ(s.substr(0), "abc");
    EXPECT_EQ(s.substr(3), "");
    EXPECT_EQ(s.substr(1, 100), "bc");
    EXPECT_EQ(s.substr(1, String::npos), "bc");
    EXPECT_EQ(with_nul.substr(1, 3).str(), "b\0c"s);
    EXPECT_EQ(ExtString("abc").substr(1, 1).str(), "b");

    EXPECT_EQ(s.replace(1, 1, "xyz", 2), "axyc");
    EXPECT_EQ(s.replace(2, 100, "-"), "ax-");
    EXPECT_EQ(s.replace(3, 0, "end"), "ax-end");
    EXPECT_EQ(s.replace(0, 1, nullptr), "x-end");
    EXPECT_EQ(s.replace(0, 1, nullptr, 9), "-end");
    EXPECT_EQ(s.replace(0, 1, s, 4), "-endend") << "from its own contents";
    EXPECT_EQ(&s.prepend("<"), &s);
    EXPECT_EQ(s, "<-endend");
    EXPECT_EQ(s.prepend(s), "<-endend<-endend");
    EXPECT_EQ(String("x").prepend(with_nul).size(), 6u);
}

TEST(StringTest, PositionsBeyondTheEndRaiseOneMessage) {
    String s("abc");
    const std::function<void()> calls[] = {
        [&] { s.substr(4); },
        [&] { s.substr(4, 0); },
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

TEST(StringTest, PadsWithBlanksForEitherSign) {
    EXPECT_EQ(String::pad(3), "   ");
    EXPECT_EQ(String::pad(-3), "   ");
    EXPECT_EQ(String::pad(0), "");
    EXPECT_EQ(String::pad(5000).size(), 5000u);
}

TEST(StringTest, MapsAsciiLettersUpToTheFirstNul) {
    EXPECT_EQ(with_nul.to_upper().str(), "AB");
    EXPECT_EQ(String("AB\0CD", 5).to_lower().str(), "ab");
    ExtString whole("ab\0cd"s);
    whole.upper();
    EXPECT_EQ(whole.str(), "AB\0CD"s);
    whole.lower();
    EXPECT_EQ(whole.str(), "ab\0cd"s);
    for (int byte = 1; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        EXPECT_EQ(String(c).to_upper(), c >= 'a' && c <= 'z' ? String(char(c - 32)) : String(c));
        EXPECT_EQ(String(c).to_lower(), c >= 'A' && c <= 'Z' ? String(char(c + 32)) : String(c));
    }
}

TEST(StringTest, TrimsASetToWhichNulAlwaysBelongs) {
    EXPECT_EQ(String("  x y  ").trim(" "), "x y");
    EXPECT_EQ(String("xxx").trim("x"), "");
    EXPECT_EQ(String("").trim("x"), "");
    EXPECT_EQ(String("abcba").trim("ab"), "c");
    EXPECT_EQ(String(" x ").trim(""), " x ");
    EXPECT_EQ(String(" x ").trim(nullptr), " x ");
    EXPECT_EQ(String("\0x\0y\0\0"s).trim("").str(), "x\0y"s);
    EXPECT_EQ(String("\xE9x\xE9").trim("\xE9"), "x");
}

TEST(StringTest, HashKeepsItsStoredValues) {
    EXPECT_EQ(String("").hash(), 0u);
    EXPECT_EQ(String("a").hash(), 0x41u);
    EXPECT_EQ(String("abcd").hash(), 0x646362E1u);
    EXPECT_EQ(String("hello").hash(), 0x8D8CB962u);
    EXPECT_EQ(String("\xFF").hash(), 0xFFFFFFDFu);
    EXPECT_EQ(String("ab\xE9").hash(), 0xFFFFFF89u);
    EXPECT_NE(with_nul.hash(), String("ab").hash());
}

TEST(StringTest, ClassifiesEveryByte) {
    for (int byte = 1; byte < 256; ++byte) {
        const String s(static_cast<char>(byte));
        EXPECT_EQ(s.isAscii(), byte < 0x80) << byte;
        EXPECT_EQ(s.hasUnprintable(), byte < 0x20 || byte >= 0x80) << byte;
    }
    EXPECT_TRUE(String("").isAscii());
    EXPECT_FALSE(String("").hasUnprintable());
    EXPECT_TRUE(String("a\0\xE9", 3).isAscii()) << "bytes after a NUL are not looked at";
    EXPECT_TRUE(with_nul.hasUnprintable()) << "a NUL inside is unprintable";
}

TEST(FormatTest, PrintsWhatTheRuntimePrints) {
    EXPECT_EQ(String::format("%s-%03d|%-4c|%x|%5.1f%%", "disk", 7, 'q', 0xBEEFu, 2.75),
              "disk-007|q   |beef|  2.8%");
    EXPECT_EQ(String::format("%s", ""), "");
    EXPECT_EQ(String::format("a%cb", 0), "a") << "the text ends at its first NUL";
    const char* const none = nullptr;
    EXPECT_EQ(String::format(none), "");
}

TEST(FormatTest, FitsEveryLengthAroundTheGrowthSteps) {
    for (const int size : {1023, 1024, 1025, 4095, 4096, 8191, 8192, 20479, 20480, 24575, 24576,
                           126975, 126976, 300000}) {
        const String text = String::format("%*s", size, "x");
        EXPECT_EQ(text.size(), static_cast<std::uint64_t>(size));
        EXPECT_EQ(text.last('x'), static_cast<std::uint64_t>(size - 1));
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
                if (text != String(static_cast<std::uint64_t>(width - 1), ' ') + String(t))
                    ++wrong[t];
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(8));
}

}  // namespace
