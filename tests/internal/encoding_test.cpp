#include "util/internal/encoding.h"

#include <gtest/gtest.h>

#include "support/import_patch.h"

using util::ansi_to_utf8;
using util::utf8_to_ansi;

namespace {

UINT ansi_page;
UINT WINAPI replaced_page() {
    return ansi_page;
}

// The conversions are compiled into this program, so that its own view of the page is replaced.
class EncodingTest : public testing::Test {
    const util_test::ImportPatch m_patch{nullptr, "GetACP", replaced_page};
};

TEST_F(EncodingTest, Utf8ToAnsi_ExactOrRefused) {
    const struct {
        UINT page;
        const char *utf8, *ansi;  // null: refused
    } cases[] = {
        {1252, "", ""},
        {1252, "\xC3\xA4?\xE2\x82\xAC", "\xE4?\x80"},
        {932, "\xE6\x97\xA5\\", "\x93\xFA\\"},
        {65001, "\xC4\x80\xF0\x9F\x98\x80", "\xC4\x80\xF0\x9F\x98\x80"},
        {1252, nullptr, nullptr},
        {1252, "\xC4\x80", nullptr},          // best fit: A
        {1252, "a\xCC\x88", nullptr},         // a and a combining mark
        {1252, "\xE6\x97\xA5", nullptr},      // "?"
        {932, "\xC3\xA4", nullptr},           // best fit: a
        {1252, "\xC3\xA4\xC3", nullptr},      // broken off after a good one
        {65001, "\xED\xA0\x80", nullptr},     // lone surrogate
        {65001, "\xF4\x90\x80\x80", nullptr}  // beyond the last character
    };
    std::string out;
    for (const auto& c : cases) {
        ansi_page = c.page;
        out = "kept";
        EXPECT_EQ(utf8_to_ansi(c.utf8, out), c.ansi != nullptr) << &c - cases;
        EXPECT_EQ(out, c.ansi ? c.ansi : "kept") << &c - cases;
        if (!c.ansi) continue;
        EXPECT_TRUE(ansi_to_utf8(c.ansi, L"another text", out)) << &c - cases;
        EXPECT_EQ(out, c.utf8);
    }
    ansi_page = 1252;
    for (const std::string start : {"", "\xC3\xA9"}) {  // the latter is one byte in the page
        std::string text = start + std::string(start.empty() ? 32766 : 32765, 'x');
        EXPECT_TRUE(utf8_to_ansi(text.c_str(), out));
        EXPECT_FALSE(utf8_to_ansi((text += 'x').c_str(), out)) << "lengths have 16 bits";
    }
    SetFileApisToOEM();  // page 437
    EXPECT_TRUE(utf8_to_ansi("\xC3\xA9", out, util::Page::files) && out == "\x82");
    EXPECT_TRUE(ansi_to_utf8("\x82", L"\u00E9", out, util::Page::files) && out == "\xC3\xA9");
    SetFileApisToANSI();
}

TEST_F(EncodingTest, AnsiToUtf8_TwinWinsWhenTheBytesAreItsBestFit) {
    const struct {
        UINT page;
        const char* ansi;
        const wchar_t* twin;
        const char* utf8;  // null: refused
    } cases[] = {
        {1252, "A", L"\uFF21", "\xEF\xBC\xA1"},
        {1252, "?\xE4", L"\u65E5\u00E4", "\xE6\x97\xA5\xC3\xA4"},
        {932, "a", L"\u00E4", "\xC3\xA4"},
        {1252, "A", L"A", "A"},
        {1252, "A", L"", "A"},                        // no twin
        {1252, "A", L"\uFF22", "A"},                  // the twin is another text
        {1252, "AB", L"\uFF21", "AB"},                // the twin is shorter
        {932, "\x93", L"", nullptr},                  // half a character
        {65001, "\xEF\xBF\xBD", L"\xD800", nullptr},  // a surrogate is no text
    };
    for (const auto& c : cases) {
        ansi_page = c.page;
        std::string out = "kept";
        EXPECT_EQ(ansi_to_utf8(c.ansi, c.twin, out), c.utf8 != nullptr) << &c - cases;
        EXPECT_EQ(out, c.utf8 ? c.utf8 : "kept") << &c - cases;
    }
    ansi_page = 65001;
    EXPECT_EQ(util::words_to_utf8("cut \xC3"), "cut \xEF\xBF\xBD");
}

}  // namespace
