#include "util/portable/utf8.h"

#include <gtest/gtest.h>

#include "support/scratch_directory.h"
// after the platform's header
#include <comutil.h>

#include <string>

namespace {

TEST(Utf8Test, ConvertsBothWaysAtAnyLength) {
    const struct {
        std::string utf8;
        std::wstring wide;
    } cases[] = {{"", L""},
                 {"caf\xC3\xA9 \xE8\xA4\x87\xE8\xA3\xBD", L"caf\u00E9 \u8907\u88FD"},
                 {"a\xF0\x9F\x98\x80z\xEF\xBF\xBF", L"a\xD83D\xDE00z\xFFFF"},
                 {std::string(20000, 'x'), std::wstring(20000, L'x')}};
    for (const auto& c : cases) {
        _bstr_t wide(L"before");
        EXPECT_TRUE(UTIL_Utf8ToWideChar(c.utf8.c_str(), &wide));
        ASSERT_NE(wide.copy(false), nullptr) << "an empty text is a text";
        EXPECT_EQ(std::wstring(wide, wide.length()), c.wide);
        String utf8 = "before";
        EXPECT_TRUE(UTIL_WideCharToUtf8(c.wide.c_str(), &utf8));
        EXPECT_EQ(utf8, c.utf8);
    }
}

TEST(Utf8Test, InvalidTextTurnsIntoReplacementCharacters) {
    _bstr_t wide;
    EXPECT_TRUE(UTIL_Utf8ToWideChar("a\xFFz", &wide));
    EXPECT_STREQ(wide, L"a\uFFFDz");
    EXPECT_TRUE(UTIL_Utf8ToWideChar("a\xE9", &wide));
    EXPECT_STREQ(wide, L"a\uFFFD") << "the platform writes no NUL behind this one";
    String utf8;
    EXPECT_TRUE(UTIL_WideCharToUtf8(L"a\xD83Dz", &utf8));
    EXPECT_EQ(utf8, "a\xEF\xBF\xBDz");
}

TEST(Utf8Test, AnsiTextIsComposedAndLacksWhatThePageLacks) {
    ASSERT_EQ(GetACP(), 1252u) << "the cases are written for this page";
    const char* const cases[][2] = {{"", ""},
                                    {"caf\xC3\xA9", "caf\xE9"},
                                    {"cafe\xCC\x81", "caf\xE9"},  // an e and a combining accent
                                    {"a\xE8\xA4\x87z\xE2\x82\xAC", "a?z\x80"}};
    for (const auto& [utf8, ansi] : cases) {
        String direct = "before", through_wide = "before";
        EXPECT_TRUE(UTIL_WcharToMultiByte(util_test::to_wide(utf8).c_str(), &through_wide));
        EXPECT_TRUE(UTIL_Utf8ToMultiByte(utf8, &direct));
        EXPECT_EQ(through_wide, ansi);
        EXPECT_EQ(direct, ansi);
    }
}

TEST(Utf8Test, NullPointersFailAndOnlyTwoOutputsAreEmptied) {
    String emptied = "before", kept = "before";
    _bstr_t emptied_wide(L"before");
    EXPECT_FALSE(UTIL_WideCharToUtf8(nullptr, &emptied));
    EXPECT_FALSE(UTIL_Utf8ToWideChar(nullptr, &emptied_wide));
    EXPECT_TRUE(emptied.empty() && emptied_wide.length() == 0);
    EXPECT_FALSE(UTIL_WcharToMultiByte(nullptr, &kept));
    EXPECT_FALSE(UTIL_Utf8ToMultiByte(nullptr, &kept));
    EXPECT_EQ(kept, "before");
    EXPECT_FALSE(UTIL_WideCharToUtf8(L"a", nullptr));
    EXPECT_FALSE(UTIL_WcharToMultiByte(L"a", nullptr));
    EXPECT_FALSE(UTIL_Utf8ToWideChar("a", nullptr));
    EXPECT_FALSE(UTIL_Utf8ToMultiByte("a", nullptr));
}

}  // namespace
