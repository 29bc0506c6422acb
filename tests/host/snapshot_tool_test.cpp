#include "util/host/installed_products.h"

#include "support/built_file.h"
#include "support/environment_change.h"
#include "support/scratch_directory.h"
#include "support/test.h"

namespace {

namespace fs = std::filesystem;

TEST(SnapshotToolTest, IsTheFirstPlaceThatHasIt) {
    const util_test::ScratchDirectory scratch;
    const std::string path = std::getenv("PATH"), vendor = "C:\\Program Files\\Vorn";
    ASSERT_FALSE(fs::exists(vendor)) << "would be removed";
    _putenv(("PATH=%SystemRoot%;;" + scratch.path()).c_str());
    String tool = "before";
    EXPECT_EQ(UTIL_GetHalcVexsnapFileName(tool), -1);
    EXPECT_EQ(tool, "");
    const std::string places[] = {
        scratch / "vexsnap.exe", vendor + "\\Halcyra Vexsnap for Win2K\\vexsnap.exe",
        vendor + "\\Halcyra Vexsnap\\vexsnap.exe", util_test::built_file("tssnap.exe")};
    for (const std::string& place : places) {  // the last first
        fs::create_directories(fs::path(place).parent_path());
        std::ofstream(place) << "x";
        EXPECT_EQ(UTIL_GetHalcVexsnapFileName(tool), 0);
        EXPECT_EQ(tool, place);
    }
    fs::remove(places[3]);
    fs::remove_all(vendor);
    _putenv(("PATH=" + path).c_str());
}

TEST(SnapshotToolTest, ProgramInAFolderThatTheAnsiPageLacks_GetsItsOwn) {
    const util_test::ScratchDirectory scratch;
    const std::string folder = "\xEF\xBC\xA1";  // best fit: A
    for (const std::string& name : {folder, std::string("A")})
        scratch.directory(name), scratch.file(name + "\\tssnap.exe");
    const std::wstring program = util_test::to_wide(scratch / folder + "\\probe.exe");
    CopyFileW(util_test::to_wide(util_test::built_file("version_probe.exe")).c_str(),
              program.c_str(), TRUE);
    const util_test::EnvironmentChange path(
        L"PATH", util_test::to_wide(util_test::built_file("")).c_str());  // with the DLLs
    FILE* const output = _wpopen((program + L" tool").c_str(), L"r");
    char line[300] = "";
    std::fgets(line, sizeof line, output);
    EXPECT_EQ(_pclose(output), 0);
    EXPECT_EQ(line, scratch / folder + "\\tssnap.exe\n");
}

}  // namespace
