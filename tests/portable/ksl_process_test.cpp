#include "util/portable/ksl_process.h"

#include "support/import_patch.h"
#include "support/test.h"
#include "util/internal/scoped_handle.h"

using util_test::ImportPatch;

namespace {

const std::string child = "bin\\child.exe ";  // tests run in the build folder

TEST(System2Test, GivesTheWholeExitCode) {
    for (int code : {0, 1, 255, -1, 259, 70000, INT_MIN})
        EXPECT_EQ(ksl_system2((child + "exit " + std::to_string(code)).c_str()), code);
}

TEST(System2Test, LetsTheChildInheritNoHandle) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const util::WinHandle event(CreateEventA(&inherited, TRUE, FALSE, nullptr));
    const auto number = reinterpret_cast<std::intptr_t>(event.get());
    ksl_system2((child + "signal " + std::to_string(number)).c_str());
    EXPECT_EQ(WaitForSingleObject(event.get(), 0), DWORD(WAIT_TIMEOUT));
}

TEST(System2Test, PassesCharactersOfTheAnsiPageExactlyAndRefusesOthers) {
    ASSERT_EQ(GetACP(), 1252u) << "the cases are written for this page";
    EXPECT_EQ(ksl_system2((child + "unit \xE2\x82\xAC").c_str()), 0x20AC);
    SetFileApisToOEM();
    EXPECT_EQ(ksl_system2((child + "unit \xC3\xA9").c_str()), 0xE9);
    SetFileApisToANSI();
    for (const std::string& refused : {child + "unit \xE2\x86\x92", child + "unit \xE9",
                                       std::string("bin\\no_such_program.exe")}) {
        SetLastError(77);
        EXPECT_EQ(ksl_system2(refused.c_str()), -1);
        EXPECT_EQ(GetLastError(), DWORD(ERROR_FILE_NOT_FOUND)) << refused;
    }
    errno = 0;
    EXPECT_EQ(ksl_system2(nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
}

// Failing calls leave 77 in errno and the last error. Freeing and closing may disturb both.
std::intptr_t scribble_and_fail(const char*, char* line) {
    line[0] = '#';
    return util_test::fails<0, 77, 77>();
}
void disturbing_free(void* block) {
    std::free(block);
    util_test::fails<0, 88, 88>();
}
BOOL WINAPI disturbing_close(HANDLE handle) {
    const BOOL closed = CloseHandle(handle);
    util_test::fails<0, 88, 88>();
    return closed;
}

TEST(System2Test, EveryFailureKeepsItsErrorCodes) {
    const char* const command = "bin\\child.exe exit 3";  // in read-only memory
    const auto expect_failure = [&](const char* call, auto* replacement) {
        ImportPatch patch(call, replacement), free_patch("free", disturbing_free),
            close_patch("CloseHandle", disturbing_close);
        EXPECT_EQ(ksl_system2(command), -1) << call;
        EXPECT_EQ(errno, 77) << call;
        EXPECT_EQ(GetLastError(), 77u) << call;
    };
    expect_failure("_strdup", util_test::fails<0, 77, 77>);
    expect_failure("CreateProcessA", scribble_and_fail);
    expect_failure("WaitForSingleObject", util_test::fails<WAIT_ABANDONED, 77, 77>);
    expect_failure("GetExitCodeProcess", util_test::fails<0, 77, 77>);
    EXPECT_EQ(ksl_system2(command), 3);
}

TEST(SystemTest, ForwardsToTheInterpreter) {
    EXPECT_EQ(ksl_system("exit 300"), 300);
    EXPECT_NE(ksl_system(nullptr), 0) << "there is an interpreter";
}

std::string line_of(FILE* stream) {
    char line[16] = "";
    return std::fgets(line, sizeof line, stream) ? line : "";
}

TEST(PipeTest, ReadsWhatTheCommandPrintsAndWritesWhatItReads) {
    FILE* from = ksl_popen("echo out& exit 1", "r");
    ASSERT_NE(from, nullptr);
    EXPECT_EQ(line_of(from), "out\n");
    EXPECT_EQ(ksl_pclose(from), 0) << "the exit status is not told";

    FILE* to = ksl_popen((child + "save piped.txt").c_str(), "w");
    ASSERT_NE(to, nullptr);
    std::fputs("in\n", to);
    EXPECT_EQ(ksl_pclose(to), 0);
    FILE* file = std::fopen("piped.txt", "r");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(line_of(file), "in\n");
    std::fclose(file);
    std::remove("piped.txt");
}

TEST(PipeTest, ReportsFailuresOfTheRuntimeAndBadArguments) {
    {
        ImportPatch patch("_pclose", util_test::fails<-7>);
        EXPECT_EQ(ksl_pclose(stdout), -7);
    }
    const char* const bad[][2] = {{nullptr, "r"}, {"exit 0", nullptr}, {"exit 0", "x"}};
    for (const auto& [command, mode] : bad) {
        errno = 0;
        EXPECT_EQ(ksl_popen(command, mode), nullptr);
        EXPECT_EQ(errno, EINVAL);
    }
    errno = 0;
    EXPECT_EQ(ksl_pclose(nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
}

}  // namespace
