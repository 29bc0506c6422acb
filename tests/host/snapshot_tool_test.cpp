#include "support/built_file.h"
#include "support/environment_change.h"
#include "support/test.h"

namespace {

TEST(SnapshotToolTest, ProgramInAFolderThatTheAnsiPageLacks_GetsItsOwn) {
    const util_test::ScratchDirectory scratch;
    const std::string folder = "\xEF\xBC\xA1";  // best fit: A
    for (const std::string& name : {folder, std::string("A")}) {
        scratch.directory(name);
        scratch.file(name + "\\tssnap.exe");
    }
    const std::wstring program = util_test::to_wide(scratch / folder + "\\probe.exe");
    CopyFileW(util_test::to_wide(util_test::built_file("version_probe.exe")).c_str(),
              program.c_str(), TRUE);
    util_test::Environment environment;
    environment.set("PATH", util_test::built_file(""));  // with the DLLs
    FILE* const output = _wpopen((program + L" tool").c_str(), L"r");
    char line[300] = "";
    std::fgets(line, sizeof line, output);
    EXPECT_EQ(_pclose(output), 0);
    EXPECT_EQ(line, scratch / folder + "\\tssnap.exe\n");
}

}  // namespace
