#include "util/portable/current_directory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "torture/resources.h"

using util_test::ImportPatch;

namespace {

TEST(CurrentDirectoryTest, IsGivenInUtf8) {
    const util_test::ScratchDirectory scratch;
    for (auto* select_page : {SetFileApisToANSI, SetFileApisToOEM, SetFileApisToANSI}) {
        select_page();
        // In page 1252 the last two have no other form than "??" and "Ag".
        for (const char* name : {"r\xC3\xA9plica", "\xE8\xA4\x87\xE8\xA3\xBD", "\xC4\x80g"}) {
            ASSERT_TRUE(SetCurrentDirectoryW(util_test::to_wide(scratch.directory(name)).c_str()));
            EXPECT_EQ(UTIL_CurrentDirectory(), scratch / name);
        }
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

TEST(CurrentDirectoryTest, AnyLengthOrTheEmptyTextAndTheBlockOfALongOneStays) {
    ImportPatch fake("GetCurrentDirectoryA", fake_current);
    const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    for (std::size_t length : {3, 259, 260, 261, 5000}) {
        current = std::string(length - 1, 'd') + "\xE9";
        const std::string expected = current.substr(0, length - 1) + "\xC3\xA9";
        const long before = torture::blocks_of(heap);
        EXPECT_EQ(UTIL_CurrentDirectory(), expected);
        EXPECT_EQ(torture::blocks_of(heap) - before, length < 260 ? 0 : 1) << length;
    }
    growth = 1;
    EXPECT_EQ(UTIL_CurrentDirectory(), "") << "grown between the calls";
    growth = 0;
    current.clear();
    EXPECT_EQ(UTIL_CurrentDirectory(), "");
}

}  // namespace
