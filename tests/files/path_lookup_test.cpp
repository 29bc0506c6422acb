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

namespace {

// The tree t; the current directory is t\a\deep. In the tables a "t" at the start of an element
// or a result stands for the tree's own path.
class PathLookupTest : public testing::Test {
  protected:
    PathLookupTest() {
        for (const char* directory :
             {"a\\deep", "b\\sub", "c", "\xE6\x97\xA5", "Ag", "\xC4\x80g\\deep"})
            m_tree.directory(directory);
        for (const char* file :
             {"a\\xx", "a\\deep\\here", "a\\deep\\o..k", "b\\xx", "b\\sub\\y", "c\\xx", "top",
              "\xE6\x97\xA5\\\xC3\xA4", "Ag\\xx", "\xC4\x80g\\xx"}) {
            m_tree.file(file);
        }
        SetCurrentDirectoryA((m_tree / "a\\deep").c_str());
    }
    std::string in_tree(std::string text) const {
        text.insert(0, ";");
        for (std::size_t at = 0; (at = text.find(";t", at)) != std::string::npos;)
            text.replace(at + 1, 1, m_tree.path());
        return text.substr(1);
    }

    util_test::ScratchDirectory m_tree;
};

TEST_F(PathLookupTest, SearchTakesTheFirstHitAndRepeatsItsElement) {
    const std::string cases[][4] = {
        // name, list, result, list after it
        {"xx", "t\\a;t\\b;t\\c", "t\\a\\xx", ";t\\a;t\\a"},
        {"xx", "t;t\\c", "t\\c\\xx", ""},
        {"xx", "t\\b\\;t\\a", "t\\b\\xx", ";t\\b\\"},                    // joined at once
        {"xx", "t\\b/;t\\a", "t\\b/xx", ";t\\b/"},                       //
        {"xx", "%SystemRoot%;t\\a;%A%;t\\b", "t\\a\\xx", ";t\\a;t\\a"},  // skipped, but counted
        {"xx", ";;t\\a;;t\\b;", "t\\a\\xx", ";t\\a"},                    // empty: neither
        {"sub\\y", "t\\a;t\\b", "t\\b\\sub\\y", ""},
        {"\xC3\xA4", "t\\\xE6\x97\xA5", "t\\\xE6\x97\xA5\\\xC3\xA4", ""},
        {"here", "t\\missing;t\\a", "", "t\\missing;t\\a"},  // not where we are
        {"xx", ";", "", ";"},
    };
    for (const auto& [name, before, result, after] : cases) {
        String list = in_tree(before);
        EXPECT_EQ(absolute_pathname(name, list, FileAttr::no_read), in_tree(result)) << before;
        EXPECT_EQ(list, in_tree(after)) << before;
    }

    const std::wstring path = util_test::to_wide(in_tree("t\\missing;t\\\xE6\x97\xA5;t\\b"));
    const EnvironmentChange change(L"PATH", path.c_str());
    EXPECT_EQ(absolute_pathname("sub\\y", FileAttr::any), in_tree("t\\b\\sub\\y"));
    String list;
    EXPECT_EQ(absolute_pathname("\xC3\xA4", list, FileAttr::any), in_tree(cases[7][2]));
    EXPECT_EQ(list, in_tree(";t\\\xE6\x97\xA5")) << "rewritten from the variable's elements";
    const EnvironmentChange unset(L"PATH", nullptr);
    EXPECT_EQ(absolute_pathname("here", FileAttr::any), "");
}

TEST_F(PathLookupTest, TheOtherFormsGiveWhatExistsAndLeaveTheListAlone) {
    const std::string cases[][2] = {
        // From the current directory, t\a\deep.
        {"..\\xx", "t\\a\\xx"},
        {"../../b/sub/y", "t\\b\\sub\\y"},
        {"..\\", "t\\a\\deep\\..\\"},         // a single part, which is not ".."
        {"\\..\\\\xx", "t\\a\\xx"},           // empty parts are none
        {".\\..\\here", "t\\a\\deep\\here"},  // the "." is what goes
        {"..\\.\\xx", "t\\a\\.\\xx"},
        {"o..k", "t\\a\\deep\\o..k"},  // no component
        {"..\\../xx", ""},             // only one of the two separates: t\a\../xx is t\xx
        {"..\\missing", ""},
        {"..\\..\\..\\..\\..\\..\\..\\..\\..\\..\\..\\..\\windows", "C:\\windows"},
        // With a drive: as it is.
        {"t\\a\\..\\b\\xx", "t\\a\\..\\b\\xx"},
        {"t\\a\\missing", ""},
    };
    for (const auto& [name, result] : cases) {
        String list = in_tree("t\\a");
        EXPECT_EQ(absolute_pathname(in_tree(name), list, FileAttr::any), in_tree(result)) << name;
        EXPECT_EQ(list, in_tree("t\\a")) << name;
    }
    SetCurrentDirectoryW(util_test::to_wide(m_tree / "\xC4\x80g\\deep").c_str());
    EXPECT_EQ(absolute_pathname("..\\xx", FileAttr::any), m_tree / "\xC4\x80g\\xx") << "not Ag";
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
    EXPECT_EQ(Tools::find_location("x", FileAttr::any), util_test::built_file(""));
    const std::string deep = "C:\\" + std::string(250, 'd') + "\\";
    const std::string cases[][2] = {
        {"C:\\\xE4/x\\agent.exe", "C:\\\xC3\xA4/x\\"},
        {"agent.exe", ""},
        {deep + "agent.exe", deep},  // cut by the buffer
    };
    const util_test::ImportPatch patch("GetModuleFileNameA", give_module_name);
    for (const auto& [module, location] : cases) {
        module_name = module;
        EXPECT_EQ(Tools::find_location("", FileAttr::any), location) << module;
    }
}

}  // namespace
