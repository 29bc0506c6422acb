#include "util/internal/ansi_text.h"

#include <gtest/gtest.h>

#include "support/import_patch.h"

namespace {

UINT ansi_page;
UINT WINAPI replaced_page() {
    return ansi_page;
}

// The conversions are compiled into this program, so that its own view of the page is replaced.
TEST(AnsiTextTest, ConvertsExactlyOrNotAtAll) {
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
        {1252, "\xC3\xA4\xC3", nullptr},      // broken off behind a good one
        {65001, "\xED\xA0\x80", nullptr},     // lone surrogate
        {65001, "\xF4\x90\x80\x80", nullptr}  // beyond the last character
    };
    util_test::ImportPatch patch(nullptr, "GetACP", replaced_page);
    for (const auto& c : cases) {
        ansi_page = c.page;
        std::string out = "kept";
        EXPECT_EQ(util::utf8_to_ansi(c.utf8, out), c.ansi != nullptr) << &c - cases;
        EXPECT_EQ(out, c.ansi ? c.ansi : "kept") << &c - cases;
        if (!c.ansi) continue;
        EXPECT_TRUE(util::ansi_to_utf8(c.ansi, out)) << &c - cases;
        EXPECT_EQ(out, c.utf8);
    }
    std::string out = "kept";
    ansi_page = 932;
    EXPECT_FALSE(util::ansi_to_utf8("\x93", out)) << "half a character";
    EXPECT_FALSE(util::ansi_to_utf8(nullptr, out));
    EXPECT_EQ(out, "kept");
}

}  // namespace
