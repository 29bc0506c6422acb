#include "util/portable/current_directory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "support/import_patch.h"
#include "support/scratch_directory.h"

using util_test::ImportPatch;

namespace {

TEST(CurrentDirectoryTest, IsGivenInUtf8) {
    ASSERT_EQ(GetACP(), 1252u) << "the cases are written for this page";
    const util_test::ScratchDirectory scratch;
    const char* const cases[][2] = {{"r\xC3\xA9plica", "r\xC3\xA9plica"},
                                    {"\xE8\xA4\x87\xE8\xA3\xBD", "??"}};  // the page lacks them
    for (const auto& [name, given] : cases) {
        ASSERT_TRUE(SetCurrentDirectoryW(util_test::to_wide(scratch.directory(name)).c_str()));
        EXPECT_EQ(UTIL_CurrentDirectory(), scratch / given);
    }
}

// A platform whose current directory is this text, in the ANSI page, and grows at each question.
std::string current;
std::size_t growth;

DWORD WINAPI fake_current(DWORD room, LPSTR out) {
    const std::string text = current;
    current.append(growth, 'd');
    if (text.size() >= room) return static_cast<DWORD>(text.size() + 1);
    std::memcpy(out, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}

int blocks;
bool out_of_memory;
void* counting_malloc(size_t size) {
    ++blocks;
    return out_of_memory ? nullptr : std::malloc(size);
}

TEST(CurrentDirectoryTest, AnyLengthOrTheEmptyTextAndTheBlockOfALongOneStays) {
    ImportPatch fake("GetCurrentDirectoryA", fake_current);
    ImportPatch count("malloc", counting_malloc);
    for (std::size_t length : {3, 259, 260, 261, 5000}) {
        blocks = 0;
        current = std::string(length - 1, 'd') + "\xE9";
        EXPECT_EQ(UTIL_CurrentDirectory(), std::string(length - 1, 'd') + "\xC3\xA9");
        EXPECT_EQ(blocks, length < 260 ? 0 : 1) << length;
    }
    out_of_memory = true;
    EXPECT_EQ(UTIL_CurrentDirectory(), "");
    out_of_memory = false;
    growth = 1;
    EXPECT_EQ(UTIL_CurrentDirectory(), "") << "grown between the calls";
    growth = 0;
    current.clear();
    EXPECT_EQ(UTIL_CurrentDirectory(), "");
}

}  // namespace
