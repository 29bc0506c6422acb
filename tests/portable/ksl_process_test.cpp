#include "util/portable/ksl_process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "util/internal/scoped_handle.h"

using util_test::handle_count;
using util_test::ImportPatch;

namespace {

const std::string child = "bin\\child.exe ";  // tests run in the build folder

TEST(System2Test, GivesTheWholeExitCode) {
    for (int code : {0, 1, 255, -1, 259, 70000, INT_MIN})
        EXPECT_EQ(ksl_system2((child + "exit " + std::to_string(code)).c_str()), code);
}

TEST(System2Test, LetsTheChildInheritNoHandle) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const util::KernelHandle event(CreateEventA(&inherited, TRUE, FALSE, nullptr));
    const auto number = reinterpret_cast<std::intptr_t>(event.get());
    ksl_system2((child + "signal " + std::to_string(number)).c_str());
    EXPECT_EQ(WaitForSingleObject(event.get(), 0), DWORD(WAIT_TIMEOUT));
}

TEST(System2Test, PassesCharactersOfTheAnsiPageExactlyAndRefusesOthers) {
    ASSERT_EQ(GetACP(), 1252u) << "the cases are written for this page";
    EXPECT_EQ(ksl_system2((child + "unit \xE2\x82\xAC").c_str()), 0x20AC);
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

// Replacements for the calls of a start, with the parameters that matter to any; the platform's
// convention lets them leave out the rest. Failing ones leave their mark in errno and the
// last-error code; freeing and closing disturb both, as they are allowed to.
void mark(int code) {
    errno = code;
    SetLastError(static_cast<DWORD>(code));
}
template <int result>
std::intptr_t fail(const char*, char*) {
    mark(77);
    return result;
}
std::intptr_t scribble_and_fail(const char*, char* line) {
    line[0] = '#';
    return fail<0>(nullptr, nullptr);
}
int blocks_freed;
void disturbing_free(void* block) {
    ++blocks_freed;
    std::free(block);
    mark(88);
}
BOOL WINAPI disturbing_close(HANDLE handle) {
    const BOOL closed = CloseHandle(handle);
    mark(88);
    return closed;
}

TEST(System2Test, EveryFailureIsReportedAndGivesEverythingBack) {
    const struct {
        const char* call;
        std::intptr_t (*replacement)(const char*, char*);
        int blocks_freed;
    } failures[] = {{"_strdup", fail<0>, 0},
                    {"CreateProcessA", scribble_and_fail, 1},
                    {"WaitForSingleObject", fail<-1>, 1},
                    {"WaitForSingleObject", fail<WAIT_ABANDONED>, 1},
                    {"GetExitCodeProcess", fail<0>, 1}};
    const char* const command = "bin\\child.exe exit 3";  // in read-only memory
    ASSERT_EQ(ksl_system2(command), 3);
    const long handles = handle_count();
    ImportPatch free_patch("free", disturbing_free), close_patch("CloseHandle", disturbing_close);
    for (const auto& f : failures) {
        ImportPatch patch(f.call, f.replacement);
        blocks_freed = 0;
        EXPECT_EQ(ksl_system2(command), -1) << f.call;
        EXPECT_EQ(errno, 77) << f.call;
        EXPECT_EQ(GetLastError(), 77u) << f.call;
        EXPECT_EQ(blocks_freed, f.blocks_freed) << f.call;
    }
    EXPECT_EQ(ksl_system2(command), 3);
    EXPECT_EQ(handle_count(), handles);
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
