#include "util/portable/current_directory.h"

#include "support/import_patch.h"
#include "support/test.h"
#include "torture/resources.h"

using util_test::ImportPatch;

namespace {

// A platform whose current directory is a text in the ANSI page that grows at each question.
TEST(CurrentDirectoryTest, AnyLengthOrTheEmptyTextAndTheBlockOfALongOneStays) {
    std::string current;
    std::size_t growth = 0;
    const ImportPatch patch("GetCurrentDirectoryA", [&](DWORD room, char* out) {
        const std::string text = current;
        current.append(growth, 'd');
        if (text.size() >= room) return static_cast<DWORD>(text.size() + 1);
        std::memcpy(out, text.c_str(), text.size() + 1);
        return static_cast<DWORD>(text.size());
    });
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
