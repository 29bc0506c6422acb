#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/program_output.h"
#include "support/scratch_directory.h"

namespace {

std::string content(const std::string& path) {
    std::ifstream file(path);  // in text mode, so that line ends are the same everywhere
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

// What stands between ```language and ``` for the first time; "" when there is no such block.
std::string block(const std::string& page, const std::string& language) {
    const std::string fence = "\n```" + language + "\n";
    const std::size_t begin = page.find(fence);
    if (begin == std::string::npos) return "";
    const std::size_t end = page.find("\n```\n", begin + fence.size() - 1);
    return page.substr(begin + fence.size(), end + 1 - begin - fence.size());
}

class GuidePageTest : public testing::TestWithParam<const char*> {};

// A page shows the program that is compiled, and what that prints.
TEST_P(GuidePageTest, ShowsWhatIsCompiledAndWhatThatPrints) {
    const std::string name = GetParam();
    const std::string root = UTIL_ROOT;
    const std::string page =
        content(root + (name == "readme" ? "/README" : "/docs/" + name) + ".md");
    const std::string language = name == "c" || name == "load" ? "c" : "cpp";
    EXPECT_EQ(block(page, language), content(root + "/examples/guide/" + name + "." + language));

    util_test::ScratchDirectory scratch;
    SetCurrentDirectoryA(scratch.path().c_str());
    EXPECT_EQ(util_test::output_of("guide_" + name + ".exe"), block(page, "text"));
}

TEST(GuideTest, ShowsTheManifestThatTheVersionTestsUse) {
    const std::string root = UTIL_ROOT;
    EXPECT_EQ(block(content(root + "/docs/windows.md"), "xml"),
              content(root + "/examples/guide/windows10.manifest"));
}

INSTANTIATE_TEST_SUITE_P(Pages, GuidePageTest,
                         testing::Values("text", "portable", "files", "poll", "mail", "host", "c",
                                         "load", "readme"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
