#include "util/portable/ksl_string.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

using namespace std::string_literals;

namespace {

// The bytes of a result, which is given back.
std::string taken(char* block, std::size_t size) {
    const std::string bytes(block, size);
    std::free(block);
    return bytes;
}

// What a call prints to standard output.
template <typename Call>
std::string printed(Call call) {
    testing::internal::CaptureStdout();
    call();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TEST(KslStringTest, CapitalisesOneByteBelowTheLength) {
    char text[] = "abc";
    EXPECT_EQ(ksl_char2upper(text, 3), nullptr);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(ksl_char2upper(text + 2, -1), text + 2) << "only the upper bound is checked";
    EXPECT_STREQ(text, "aBc");
}

TEST(KslStringTest, ReportsNullWithoutAWord) {
    const auto calls = [] {
        EXPECT_EQ(ksl_strupper(nullptr), -1);
        EXPECT_EQ(ksl_strcpy_trim(nullptr), -1);
        EXPECT_EQ(ksl_strcpy_clean(nullptr), -1);
        EXPECT_EQ(ksl_strdup(nullptr), nullptr);
        EXPECT_EQ(ksl_str2upper(nullptr), nullptr);
        EXPECT_EQ(ksl_str2lower(nullptr), nullptr);
        EXPECT_EQ(ksl_char2upper(nullptr, 0), nullptr);
    };
    EXPECT_EQ(printed(calls), "");
    EXPECT_EQ(taken(ksl_strdup("text"), 5), "text\0"s);
}

TEST(KslCodedCharTest, RefusesWithAMessageAndLeavesTheOutputAlone) {
    const auto encode = ksl_unicode2CodedChar, decode = ksl_codedChar2Unicode;
    const struct {
        int (*coder)(const void*, int, char**);
        const char* bytes;
        int length;
        std::string message;
    } cases[] = {
        {encode, nullptr, 1, "NULL pwch passed to "},
        {encode, "abc", 0, "Invalid length for "},
        {encode, "abc", 134217727, "Error allocating memory for "},
        {decode, nullptr, 1, "NULL pwch passed to "},
        {decode, "abc", -1, "Invalid length for "},
        {decode, "abc", INT_MAX, "Error allocating memory for "},
        {decode, "\2\5", 2, "Invalid format for "},
        {decode, "a\2", 2, "Invalid format for "},
    };
    for (const auto& c : cases) {
        const char* name = c.coder == encode ? "ksl_unicode2CodedChar" : "ksl_codedChar2Unicode";
        char* out = nullptr;
        EXPECT_EQ(printed([&] { EXPECT_EQ(c.coder(c.bytes, c.length, &out), -1); }),
                  c.message + name + ": 3\n");
        EXPECT_EQ(out, nullptr);
    }
    EXPECT_EQ(ksl_unicode2CodedChar("abc", 1, nullptr), -1);
    EXPECT_EQ(ksl_codedChar2Unicode("abc", 1, nullptr), -1);
}

// Death tests see standard error only: what the dying call prints is sent there at once.
template <typename Call>
void with_stdout_on_stderr(Call call) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    dup2(2, 1);
    call();
}

TEST(KslStringDeathTest, WarnsOfNullAndGoesOnIntoAFault) {
    const auto expect_fault = [](auto call, const char* message) {
        EXPECT_DEATH(with_stdout_on_stderr(call), message);
    };
    expect_fault([] { ksl_strcasecmp(nullptr, "a"); }, "NULL s1 passed to ksl_strcasecmp: 3\n");
    expect_fault([] { ksl_strcasecmp("a", nullptr); }, "NULL s2 passed to ksl_strcasecmp: 3\n");
    expect_fault([] { ksl_match_token_str(nullptr, "a", ","); },
                 "NULL token_str passed to ksl_match_token_str: 3\n");
    expect_fault([] { ksl_match_token_str("", "a", nullptr); },
                 "NULL delimits passed to ksl_match_token_str_aux: 3\n");
    expect_fault([] { ksl_match_token_str("a", nullptr, ","); },
                 "NULL token passed to ksl_match_token_str_aux: 3\n");
    EXPECT_EQ(printed([] { EXPECT_EQ(ksl_match_token_str(",,", nullptr, ","), 0); }),
              "NULL token passed to ksl_match_token_str_aux: 3\n");
}

}  // namespace
