// Texts whose NUL is the last byte of readable memory: reading in blocks must not go beyond.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "util/internal/windows.h"
#include "util/portable/ksl_string.h"
#include "util/text/byte_string.h"

namespace {

TEST(PageEndTest, TextsAreReadUpToTheirNul) {
    constexpr std::size_t page = 4096;
    char* const memory =
        static_cast<char*>(VirtualAlloc(nullptr, 2 * page, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(memory, nullptr);
    ASSERT_NE(VirtualAlloc(memory, page, MEM_COMMIT, PAGE_READWRITE), nullptr);

    for (std::size_t size = 0; size < 200; ++size) {
        const std::string expected(size, 'x');
        char* const text = memory + page - size - 1;
        std::memcpy(text, expected.c_str(), size + 1);
        EXPECT_EQ(String(text), expected);
        EXPECT_EQ(String::format("%s", text), expected);
        EXPECT_EQ(String::format(text, ""), expected);
        EXPECT_EQ(String("-").replace("-", text), expected);
        EXPECT_EQ(ksl_strcasecmp(text, expected.c_str()), 0);
    }
    EXPECT_TRUE(VirtualFree(memory, 0, MEM_RELEASE));
}

}  // namespace
