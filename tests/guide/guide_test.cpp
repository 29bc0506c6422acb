#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/matches.h"
#include "support/process.h"
#include "support/scratch_directory.h"
#include "util/internal/service.h"

namespace {

std::string content(const std::string& path) {
    std::ifstream file(path);  // in text mode, so that line ends are the same everywhere
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

// The first block of that language; "" when there is none.
std::string block(const std::string& page, const std::string& language) {
    const std::string fence = "\n```" + language + "\n";
    const std::size_t begin = page.find(fence);
    if (begin == std::string::npos) return "";
    const std::size_t end = page.find("\n```\n", begin + fence.size() - 1);
    return page.substr(begin + fence.size(), end + 1 - begin - fence.size());
}

// Installs the program as a service that works in `folder`, starts and stops it. Returns its log.
std::string log_of_service(const std::string& folder) {
    const std::string name = "util-guide-" + std::to_string(GetCurrentProcessId());
    const std::string command =
        "\"" + util_test::built_file("guide_service.exe") + "\" \"" + folder + "\"";
    const util::ScopedService manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    const util::ScopedService service(
        CreateServiceA(manager.get(), name.c_str(), nullptr, SERVICE_ALL_ACCESS,
                       SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_IGNORE,
                       command.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
    SERVICE_STATUS status = {};
    const auto wait_for = [&](DWORD state) {
        for (int tries = 0; tries < 1000 && status.dwCurrentState != state; ++tries, Sleep(10))
            QueryServiceStatus(service.get(), &status);
        EXPECT_EQ(status.dwCurrentState, state);
    };
    EXPECT_TRUE(StartServiceA(service.get(), 0, nullptr)) << GetLastError();
    wait_for(SERVICE_RUNNING);
    for (int tries = 0; tries < 1000 && !std::ifstream(folder + "\\rounds.log"); ++tries)
        Sleep(10);
    EXPECT_TRUE(ControlService(service.get(), SERVICE_CONTROL_STOP, &status)) << GetLastError();
    wait_for(SERVICE_STOPPED);
    EXPECT_EQ(status.dwWin32ExitCode, 0u);
    DeleteService(service.get());
    return content(folder + "\\rounds.log");
}

class GuidePageTest : public testing::TestWithParam<const char*> {};

// "..." in the page stands for what differs between systems.
TEST_P(GuidePageTest, ShowsWhatIsCompiledAndWhatThatPrints) {
    const std::string name = GetParam();
    const std::string root = UTIL_ROOT;
    const std::string page =
        content(root + (name == "readme" ? "/README" : "/docs/" + name) + ".md");
    const std::string language = name == "c" || name == "load" ? "c" : "cpp";
    EXPECT_EQ(block(page, language), content(root + "/examples/guide/" + name + "." + language));

    util_test::ScratchDirectory scratch;
    SetCurrentDirectoryA(scratch.path().c_str());
    const std::string output = name == "service" ? log_of_service(scratch.path())
                                                 : util_test::output_of("guide_" + name + ".exe");
    EXPECT_TRUE(util_test::matches(output, block(page, "text"))) << output;
}

TEST(GuideTest, ShowsTheManifestThatTheVersionTestsUse) {
    const std::string root = UTIL_ROOT;
    EXPECT_EQ(block(content(root + "/docs/windows.md"), "xml"),
              content(root + "/examples/guide/windows10.manifest"));
}

INSTANTIATE_TEST_SUITE_P(Pages, GuidePageTest,
                         testing::Values("c", "files", "host", "instance", "load", "log", "mail",
                                         "nightly", "poll", "portable", "readme", "serve",
                                         "service", "text"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
