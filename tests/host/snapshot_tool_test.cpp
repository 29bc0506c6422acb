#include "util/host/snapshot_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/scratch_directory.h"

namespace {

namespace fs = std::filesystem;

// A file, and the directories above it that were missing, for the time of the test.
class Planted {
  public:
    explicit Planted(const fs::path& file) : m_first(file) {
        for (fs::path parent = file; !fs::exists(parent); parent = parent.parent_path())
            m_first = parent;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "x";
    }
    ~Planted() { fs::remove_all(m_first); }

  private:
    fs::path m_first;
};

TEST(SnapshotToolTest, IsTheFirstPlaceThatHasIt) {
    const util_test::ScratchDirectory scratch;
    const std::string path = std::getenv("PATH");
    const auto found = [](int result) {
        String tool = "before";
        EXPECT_EQ(UTIL_GetHalcVexsnapFileName(tool), result);
        return tool;
    };
    _putenv(("PATH=%SystemRoot%;;" + scratch.path()).c_str());
    EXPECT_EQ(found(-1), "");

    const Planted on_path(fs::u8path(scratch / "vexsnap.exe"));
    EXPECT_EQ(found(0), scratch / "vexsnap.exe");

    const char* const win2k = "C:\\Program Files\\Vorn\\Halcyra Vexsnap for Win2K\\vexsnap.exe";
    const Planted old_install(win2k);
    EXPECT_EQ(found(0), win2k);

    const char* const current = "C:\\Program Files\\Vorn\\Halcyra Vexsnap\\vexsnap.exe";
    const Planted install(current);
    EXPECT_EQ(found(0), current);

    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, sizeof program);
    const fs::path beside = fs::path(program).replace_filename("tssnap.exe");
    const Planted own(beside);
    EXPECT_EQ(found(0), beside.u8string());
    _putenv(("PATH=" + path).c_str());
}

}  // namespace
