#include "util/host/snapshot_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/built_file.h"
#include "support/scratch_directory.h"

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

}  // namespace
