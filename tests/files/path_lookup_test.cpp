#include "util/files/path_lookup.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/built_file.h"
#include "support/environment_change.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"

using Tools::absolute_pathname;
using Tools::FileAttr;
using util_test::EnvironmentChange;
using util_test::ImportPatch;
using util_test::ScratchDirectory;
using util_test::to_wide;

namespace {

// The tree t, and the current directory in t\a\deep. In the tables a "t" at the start of an element
// or a result stands for the tree's own path.
class PathLookupTest : public testing::Test {
  protected:
    void SetUp() override {
        GetCurrentDirectoryW(MAX_PATH, m_before);
        for (const char* directory : {"a\\deep", "b\\sub", "c", "\xE6\x97\xA5"})
            m_tree.directory(directory);
        for (const char* file : {"a\\xx", "a\\deep\\here", "a\\deep\\o..k", "b\\xx", "b\\sub\\y",
                                 "c\\xx", "top", "\xE6\x97\xA5\\\xC3\xA4"}) {
            m_tree.file(file);
        }
        SetCurrentDirectoryW(to_wide(m_tree / "a\\deep").c_str());
    }
    void TearDown() override { SetCurrentDirectoryW(m_before); }

    std::string in_tree(std::string text) const {
        text.insert(0, ";");
        for (std::size_t at = 0; (at = text.find(";t", at)) != std::string::npos;)
            text.replace(at + 1, 1, m_tree.path());
        return text.substr(1);
    }

    ScratchDirectory m_tree;
    wchar_t m_before[MAX_PATH];
};

TEST_F(PathLookupTest, SearchTakesTheFirstHitAndRepeatsItsElement) {
    const struct {
        std::string name, list, result, list_after;
    } cases[] = {
        {"xx", "t\\a;t\\b;t\\c", "t\\a\\xx", ";t\\a;t\\a"},
        {"xx", "t;t\\b;t\\c", "t\\b\\xx", ";t\\b"},
        {"xx", "t;t\\c", "t\\c\\xx", ""},
        {"xx", "t\\a", "t\\a\\xx", ""},
        {"xx", "t\\b\\;t\\a", "t\\b\\xx", ";t\\b\\"},                    // joined at once
        {"xx", "t\\b/;t\\a", "t\\b/xx", ";t\\b/"},                       //
        {"xx", "%SystemRoot%;t\\a;%A%;t\\b", "t\\a\\xx", ";t\\a;t\\a"},  // skipped, but counted
        {"xx", ";;t\\a;;t\\b;", "t\\a\\xx", ";t\\a"},                    // empty: neither
        {"sub\\y", "t\\a;t\\b", "t\\b\\sub\\y", ""},
        {"sub", "t\\b", "t\\b\\sub", ""},  // a directory, too
        {"\\xx", "t\\b", "t\\b\\\\xx", ""},
        {"\xC3\xA4", "t\\\xE6\x97\xA5", "t\\\xE6\x97\xA5\\\xC3\xA4", ""},
        {"xx", "t\\missing;t", "", "t\\missing;t"},
        {"here", "t\\a;t\\b", "", "t\\a;t\\b"},  // not where we are
        {"deep\\here", "t\\b", "", "t\\b"},
        {"xx", "%t%", "", "%t%"},
        {"xx", ";", "", ";"},
    };
    for (const auto& c : cases) {
        String list = in_tree(c.list);
        EXPECT_EQ(absolute_pathname(c.name, list, FileAttr::no_read), in_tree(c.result)) << c.list;
        EXPECT_EQ(list, in_tree(c.list_after)) << c.list;
    }
}

TEST_F(PathLookupTest, WithoutAListThePathVariableIsSearched) {
    const std::string path = in_tree("t\\missing;t\\\xE6\x97\xA5;t\\b");
    const std::string found = in_tree("t\\\xE6\x97\xA5\\\xC3\xA4");
    const EnvironmentChange change(L"PATH", to_wide(path).c_str());
    EXPECT_EQ(absolute_pathname("\xC3\xA4", FileAttr::any), found);
    EXPECT_EQ(absolute_pathname("here", FileAttr::any), "");
    String list;
    EXPECT_EQ(absolute_pathname("\xC3\xA4", list, FileAttr::any), found);
    EXPECT_EQ(list, in_tree(";t\\\xE6\x97\xA5")) << "rewritten from the variable's elements";
    const EnvironmentChange unset(L"PATH", nullptr);
    EXPECT_EQ(absolute_pathname("\xC3\xA4", FileAttr::any), "");
}

TEST_F(PathLookupTest, TheOtherFormsGiveWhatExistsAndLeaveTheListAlone) {
    std::string beyond_the_root = in_tree("t").substr(3);
    for (int i = 0; i < 40; ++i)
        beyond_the_root.insert(0, "..\\");
    const struct {
        std::string name, result;
    } cases[] = {
        // From the current directory, t\a\deep.
        {"..\\xx", "t\\a\\xx"},
        {"../xx", "t\\a\\xx"},
        {"..\\..\\top", "t\\top"},
        {"../../b/sub/y", "t\\b\\sub\\y"},
        {"..", "t\\a"},
        {"..\\", "t\\a\\deep\\..\\"},         // a single part, which is not ".."
        {"\\..\\\\xx", "t\\a\\xx"},           // empty parts are none
        {".\\..\\here", "t\\a\\deep\\here"},  // the "." is what goes
        {"..\\.\\xx", "t\\a\\.\\xx"},
        {"no\\such\\..\\..\\here", "t\\a\\deep\\here"},
        {"o..k", "t\\a\\deep\\o..k"},  // no component
        {"..\\../xx", ""},             // only one of the two separates: t\a\../xx is t\xx
        {"..\\deep/../xx", "t\\a\\deep/../xx"},
        {"..\\missing", ""},
        {"a..b", ""},
        {beyond_the_root, "t"},
        // With a drive: as it is.
        {"t\\a\\..\\b\\xx", "t\\a\\..\\b\\xx"},
        {"t\\a\\xx", "t\\a\\xx"},
        {"t\\a\\missing", ""},
        {"Q:..\\xx", ""},
    };
    for (const auto& c : cases) {
        String list = in_tree("t\\a");
        const std::string expected = in_tree(c.result);
        EXPECT_EQ(absolute_pathname(in_tree(c.name), FileAttr::any), expected) << c.name;
        EXPECT_EQ(absolute_pathname(in_tree(c.name), list, FileAttr::any), expected) << c.name;
        EXPECT_EQ(list, in_tree("t\\a")) << c.name;
    }
}

TEST_F(PathLookupTest, NamesOfOneByteRaise) {
    for (const char* name : {"", "x"}) {
        try {
            absolute_pathname(name, FileAttr::any);
            ADD_FAILURE() << name;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid string position");
        }
    }
}

std::string module_name;
DWORD WINAPI give_module_name(HMODULE, char* buffer, DWORD size) {
    module_name.copy(buffer, size);  // may leave no room for a NUL, as old systems do
    return static_cast<DWORD>(module_name.size());
}

TEST(FindLocationTest, IsTheProgramsDirectoryWhateverIsAsked) {
    const std::string directory = util_test::built_file("");
    EXPECT_EQ(Tools::find_location("x", FileAttr::any), directory);
    EXPECT_EQ(Tools::find_location("", FileAttr::read | FileAttr::write), directory);

    const std::string deep = "C:\\" + std::string(250, 'd') + "\\";
    const struct {
        std::string module, location;
    } cases[] = {
        {"C:\\agent\\bin\\agent.exe", "C:\\agent\\bin\\"},
        {"C:\\\xE4/x\\agent.exe", "C:\\\xC3\xA4/x\\"},
        {"agent.exe", ""},
        {"", ""},
        {deep + "agent.exe", deep},  // cut by the buffer
    };
    const ImportPatch patch("GetModuleFileNameA", give_module_name);
    for (const auto& c : cases) {
        module_name = c.module;
        EXPECT_EQ(Tools::find_location("", FileAttr::any), c.location) << c.module;
    }
}

}  // namespace
