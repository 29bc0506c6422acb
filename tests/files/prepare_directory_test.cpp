#include "util/files/prepare_directory.h"

#include "support/scratch_directory.h"
#include "support/second_process.h"
#include "support/test.h"
#include "util/files/xr_directory.h"
#include "util/files/xr_file.h"

using util_test::SecondProcess;

namespace {

using Names = std::vector<std::string>;

Names records(const std::string& tracking_file) {
    XrFile file(tracking_file.c_str(), "r");
    Names result;
    while (file.isValid() && !file.Eof()) {
        result.push_back("unreadable");
        file >> result.back();
    }
    return result;
}

// Works in a directory of its own, so that relative paths will do.
struct PrepareDirectoryTest : testing::Test {
    PrepareDirectoryTest() { SetCurrentDirectoryA(m_scratch.path().c_str()); }
    util_test::ScratchDirectory m_scratch;
};

TEST_F(PrepareDirectoryTest, TwoProcesses_RecordEachDirectoryOnce) {
    const std::string arguments = "one.rec tree 10 \\a\\b\\c\\d";
    SecondProcess first("prepare", arguments), second("prepare", arguments);
    ASSERT_TRUE(first.ready.wait() && second.ready.wait());
    first.go.set();
    second.go.set();
    EXPECT_EQ(first.wait(), 0u);
    EXPECT_EQ(second.wait(), 0u);
    const Names found = records("one.rec");
    EXPECT_EQ(found.size(), 10 * 5u);
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()).size(), found.size());
    for (const std::string& directory : found)
        EXPECT_TRUE(XrDirectory::IsDirectory(directory)) << directory;
}

TEST_F(PrepareDirectoryTest, KilledProcesses_LeaveAtMostOneDirectoryUnrecorded) {
    constexpr int depth = 30;
    std::string below;
    for (int i = 1; i < depth; ++i)
        below += "\\d";
    int in_the_middle = 0, unrecorded = 0, losses = 0;
    const auto top = [](int round) { return "killed" + std::to_string(round) + "-"; };
    util_test::Kills kills = {"prepare", 60};
    kills.arguments = [&](int round) { return top(round) + "rec " + top(round) + " 1 " + below; };
    kills.check = [&](int round) {
        Names made;
        for (std::string next = top(round) + "0\\"; XrDirectory::IsDirectory(next); next += "d\\")
            made.push_back(next);
        if (!made.empty() && made.size() < depth) ++in_the_middle;
        const Names recorded = records(top(round) + "rec");
        if (recorded.size() < made.size()) {
            ++unrecorded;
            made.pop_back();
        }
        if (recorded != made) ++losses;
    };
    kills.run();
    std::printf(
        "kill test, preparing: %d rounds, %d hit the middle, %d lacked the last record, "
        "%d lost more\n",
        kills.rounds, in_the_middle, unrecorded, losses);
    EXPECT_EQ(losses, 0) << "seed " << kills.seed;
    EXPECT_GT(in_the_middle, 0) << "no kill hit";
}

}  // namespace
