#include "util/portable/ksl_string.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

using namespace std::string_literals;

namespace {

struct Free {
    void operator()(char* p) const { std::free(p); }
};
using HeapText = std::unique_ptr<char, Free>;

// The text after change() has worked on it in place.
template <typename Change>
std::string changed(std::string text, Change change) {
    change(&text[0]);
    return text.c_str();
}

// What a call prints to standard output.
template <typename Call>
std::string printed(Call call) {
    testing::internal::CaptureStdout();
    call();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TEST(KslStringTest, MapsEveryByteAsAsciiDoes) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string text{'x', static_cast<char>(byte)};
        const bool lower = byte >= 'a' && byte <= 'z', upper = byte >= 'A' && byte <= 'Z';
        const std::string in_upper{'X', static_cast<char>(lower ? byte - 32 : byte)};
        const std::string in_lower{'x', static_cast<char>(upper ? byte + 32 : byte)};
        EXPECT_EQ(changed(text, ksl_strupper), in_upper);
        EXPECT_EQ(changed(text, ksl_str2upper), in_upper);
        EXPECT_EQ(changed(text, ksl_str2lower), in_lower);
        EXPECT_EQ(changed(text, [](char* s) { ksl_char2upper(s, 1); }), "x" + in_upper.substr(1));
    }
}

TEST(KslStringTest, TrimsAndCleans) {
    const struct {
        const char *text, *trimmed, *cleaned;
    } cases[] = {
        {"", "", ""},
        {"   ", "", ""},
        {"  a b  ", "a b", "A B"},
        {"\t\n\v\f\rx \t\n\v\f\r", "x", "X"},
        {"\x1F \xE9z\xA0", "\x1F \xE9z\xA0", "\x1F \xE9Z\xA0"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(changed(c.text, [](char* s) { EXPECT_EQ(ksl_strcpy_trim(s), 0); }), c.trimmed);
        EXPECT_EQ(changed(c.text, [](char* s) { EXPECT_EQ(ksl_strcpy_clean(s), 0); }), c.cleaned);
    }
}

TEST(KslStringTest, CapitalisesOneByteBelowTheLength) {
    char text[] = "abc";
    EXPECT_EQ(ksl_char2upper(text, 3), nullptr);
    EXPECT_EQ(ksl_char2upper(text, INT_MAX), nullptr);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(ksl_char2upper(text, 1), text);
    EXPECT_STREQ(text, "aBc");
    EXPECT_EQ(ksl_char2upper(text + 2, -2), text + 2) << "only the upper bound is checked";
    EXPECT_STREQ(text, "ABc");
}

TEST(KslStringTest, ReportsNullWithoutAWord) {
    EXPECT_EQ(printed([] {
                  EXPECT_EQ(ksl_strupper(nullptr), -1);
                  EXPECT_EQ(ksl_strcpy_trim(nullptr), -1);
                  EXPECT_EQ(ksl_strcpy_clean(nullptr), -1);
                  EXPECT_EQ(ksl_strdup(nullptr), nullptr);
                  EXPECT_EQ(ksl_str2upper(nullptr), nullptr);
                  EXPECT_EQ(ksl_str2lower(nullptr), nullptr);
                  EXPECT_EQ(ksl_char2upper(nullptr, 0), nullptr);
              }),
              "");
    EXPECT_STREQ(HeapText(ksl_strdup("text")).get(), "text");
}

TEST(KslStrcasecmpTest, GivesTheSignedDifference) {
    EXPECT_EQ(ksl_strcasecmp("abc", "ABC"), 0);
    EXPECT_EQ(ksl_strcasecmp("ab", "abc"), -1);
    EXPECT_EQ(ksl_strcasecmp("Abcd", "a"), 3);
    EXPECT_EQ(ksl_strcasecmp("aX", "Ayz"), -1);
    EXPECT_EQ(ksl_strcasecmp("[", "a"), -6);
}

// Every pair of bytes, by the described steps.
TEST(KslStrcasecmpTest, FoldsLettersOfDifferentCaseOnly) {
    for (int b1 = 1; b1 < 256; ++b1) {
        for (int b2 = 1; b2 < 256; ++b2) {
            const std::string s1(1, char(b1)), s2(1, char(b2));
            int expected = (b1 < 128 ? b1 : b1 - 256) - (b2 < 128 ? b2 : b2 - 256);
            if (b1 >= 0x41 && b1 <= 0x5A && b2 >= 0x61 && b2 <= 0x7A) expected += 32;
            if (b1 >= 0x61 && b1 <= 0x7A && b2 >= 0x41 && b2 <= 0x5A) expected -= 32;
            ASSERT_EQ(ksl_strcasecmp(s1.c_str(), s2.c_str()), expected) << b1 << " and " << b2;
        }
    }
}

TEST(KslCodedCharTest, EncodesTwoBytesBeyondTheLength) {
    char* out = nullptr;
    ASSERT_EQ(ksl_unicode2CodedChar("\x41\0\x01\0\x02\0", 4, &out), 0);
    EXPECT_STREQ(out, "\x41\x01\x02\x01\x01\x02\x02\x01");
    const HeapText coded(out);
    ASSERT_EQ(ksl_codedChar2Unicode(coded.get(), 4, &out), 0);
    const HeapText decoded(out);
    EXPECT_EQ(std::string(out, 32), "\x41\0\x01\0\x02\0"s + std::string(26, '\0'));
}

TEST(KslCodedCharTest, ReadsBackWhatItWrote) {
    const unsigned seed = 20240607;
    std::mt19937 random(seed);
    for (int round = 0; round < 5000; ++round) {
        std::string bytes(3 + random() % 40, ' ');
        std::string expected;
        for (char& c : bytes) {
            c = "\0\1\2\3a\xFF"[random() % 6];
            expected += c == 0 ? "\1"s : c == 1 ? "\2\1"s : c == 2 ? "\2\2"s : std::string(1, c);
        }
        const int length = static_cast<int>(bytes.size()) - 2;
        char* out = nullptr;
        ASSERT_EQ(ksl_unicode2CodedChar(bytes.data(), length, &out), 0);
        const HeapText coded(out);
        ASSERT_EQ(coded.get(), expected) << "seed " << seed << " round " << round;
        // A length far below the truth does not make the decoder run out of room.
        ASSERT_EQ(ksl_codedChar2Unicode(coded.get(), random() % 2 ? length : 1, &out), 0);
        const HeapText decoded(out);
        ASSERT_EQ(std::string(out, bytes.size()), bytes) << "seed " << seed << " round " << round;
    }
}

TEST(KslCodedCharTest, RefusesWithAMessageAndLeavesTheOutputAlone) {
    using Coder = int (*)(const void*, int, char**);
    const struct {
        Coder coder;
        const char* bytes;
        int length;
        const char* message;
    } cases[] = {
        {ksl_unicode2CodedChar, nullptr, 1, "NULL pwch passed to ksl_unicode2CodedChar: 3\n"},
        {ksl_unicode2CodedChar, "abc", 0, "Invalid length for ksl_unicode2CodedChar: 3\n"},
        {ksl_unicode2CodedChar, "abc", INT_MIN, "Invalid length for ksl_unicode2CodedChar: 3\n"},
        {ksl_unicode2CodedChar, "abc", 134217727,
         "Error allocating memory for ksl_unicode2CodedChar: 3\n"},
        {ksl_codedChar2Unicode, nullptr, 1, "NULL pwch passed to ksl_codedChar2Unicode: 3\n"},
        {ksl_codedChar2Unicode, "abc", -1, "Invalid length for ksl_codedChar2Unicode: 3\n"},
        {ksl_codedChar2Unicode, "\2\5", INT_MAX,
         "Error allocating memory for ksl_codedChar2Unicode: 3\n"},
        {ksl_codedChar2Unicode, "\2\5", 2, "Invalid format for ksl_codedChar2Unicode: 3\n"},
        {ksl_codedChar2Unicode, "a\2", 2, "Invalid format for ksl_codedChar2Unicode: 3\n"},
    };
    for (const auto& c : cases) {
        char* out = nullptr;
        const std::string message =
            printed([&] { EXPECT_EQ(c.coder(c.bytes, c.length, &out), -1) << c.message; });
        EXPECT_EQ(message, c.message);
        EXPECT_EQ(out, nullptr) << c.message;
    }
    EXPECT_EQ(ksl_unicode2CodedChar("abc", 1, nullptr), -1);
    EXPECT_EQ(ksl_codedChar2Unicode("abc", 1, nullptr), -1);
}

int match_by_strtok(std::string list, const std::string& token, const char* separators) {
    for (char* word = std::strtok(&list[0], separators); word;
         word = std::strtok(nullptr, separators)) {
        if (word == token) return 1;
    }
    return 0;
}

TEST(KslMatchTokenTest, AgreesWithStrtokOnRandomLists) {
    const unsigned seed = 20240607;
    std::mt19937 random(seed);
    const auto random_text = [&](std::size_t limit) {
        std::string text(random() % limit, ' ');
        for (char& c : text)
            c = "ab, \xE9"[random() % 5];
        return text;
    };
    for (int round = 0; round < 20000; ++round) {
        const std::string leading(round % 50 == 0 ? 1100 : 0, ',');
        const std::string list = leading + random_text(14), token = random_text(4),
                          set = random_text(3);
        ASSERT_EQ(ksl_match_token_str(list.c_str(), token.c_str(), set.c_str()),
                  match_by_strtok(list, token, set.c_str()))
            << "seed " << seed << " round " << round << ": " << token << " in " << list;
    }
}

// Death tests see standard error only: what the dying call prints is sent there at once.
template <typename Call>
void with_stdout_on_stderr(Call call) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    dup2(2, 1);
    call();
}

TEST(KslStringDeathTest, WarnsOfNullAndGoesOnIntoAFault) {
    const struct {
        void (*call)();
        const char* message;
    } cases[] = {
        {[] { ksl_strcasecmp(nullptr, "a"); }, "NULL s1 passed to ksl_strcasecmp: 3\n"},
        {[] { ksl_strcasecmp("a", nullptr); }, "NULL s2 passed to ksl_strcasecmp: 3\n"},
        {[] { ksl_match_token_str(nullptr, "a", ","); },
         "NULL token_str passed to ksl_match_token_str: 3\n"},
        {[] { ksl_match_token_str("a", nullptr, ","); },
         "NULL token passed to ksl_match_token_str_aux: 3\n"},
        {[] { ksl_match_token_str("", "a", nullptr); },
         "NULL delimits passed to ksl_match_token_str_aux: 3\n"},
    };
    for (const auto& c : cases)
        EXPECT_DEATH(with_stdout_on_stderr(c.call), c.message);

    EXPECT_EQ(printed([] { EXPECT_EQ(ksl_match_token_str(",,", nullptr, ","), 0); }),
              "NULL token passed to ksl_match_token_str_aux: 3\n");
}

}  // namespace
