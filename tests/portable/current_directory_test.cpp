#include "util/portable/current_directory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "support/import_patch.h"
#include "support/scratch_directory.h"

using util_test::ImportPatch;
using util_test::ScratchDirectory;

namespace {

TEST(CurrentDirectoryTest, IsGivenInUtf8) {
    ASSERT_EQ(GetACP(), 1252u) << "the cases are written for this page";
    const ScratchDirectory scratch;
    ASSERT_TRUE(SetCurrentDirectoryA("C:\\"));
    EXPECT_EQ(UTIL_CurrentDirectory(), "C:\\");
    const struct {
        const char* name;
        const char* given;
    } cases[] = {{"plain", "plain"},
                 {"r\xC3\xA9plica", "r\xC3\xA9plica"},
                 {"\xE8\xA4\x87\xE8\xA3\xBD", "??"}};  // the page lacks them
    for (const auto& c : cases) {
        const std::wstring path = util_test::to_wide(scratch.directory(c.name));
        ASSERT_TRUE(SetCurrentDirectoryW(path.c_str()));
        EXPECT_EQ(UTIL_CurrentDirectory(), scratch / c.given);
    }
}

// A platform whose current directory is this text, in the ANSI page; it may change to another
// between two questions.
std::string current;
std::string next;

DWORD WINAPI fake_current(DWORD room, LPSTR out) {
    const std::string text = current;
    if (!next.empty()) current = next;
    if (text.size() >= room) return static_cast<DWORD>(text.size() + 1);
    std::memcpy(out, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}

int blocks;
void* counting_malloc(size_t size) {
    ++blocks;
    return std::malloc(size);
}
void* no_block(size_t) {
    return nullptr;
}

TEST(CurrentDirectoryTest, AnyLengthAndTheBlockOfALongOneStays) {
    ImportPatch fake("GetCurrentDirectoryA", fake_current);
    ImportPatch count("malloc", counting_malloc);
    for (std::size_t length : {3, 259, 260, 261, 5000}) {
        blocks = 0;
        current = std::string(length - 1, 'd') + "\xE9";
        EXPECT_EQ(UTIL_CurrentDirectory(), std::string(length - 1, 'd') + "\xC3\xA9");
        EXPECT_EQ(blocks, length < 260 ? 0 : 1) << length;
    }
}

TEST(CurrentDirectoryTest, FailuresGiveTheEmptyText) {
    ImportPatch fake("GetCurrentDirectoryA", fake_current);
    current.clear();
    EXPECT_EQ(UTIL_CurrentDirectory(), "");
    current = std::string(300, 'd');
    next = std::string(301, 'd');
    EXPECT_EQ(UTIL_CurrentDirectory(), "") << "grown between the calls";
    next.clear();
    ImportPatch patch("malloc", no_block);
    EXPECT_EQ(UTIL_CurrentDirectory(), "");
}

}  // namespace
