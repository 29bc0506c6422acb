#include "util/portable/ksl_process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "support/handle_count.h"
#include "support/import_patch.h"

using util_test::handle_count;
using util_test::ImportPatch;

namespace {

const std::string child = "bin\\child.exe ";  // tests run in the build folder

std::string exiting_with(int code) {
    return child + "exit " + std::to_string(code);
}

TEST(System2Test, GivesTheWholeExitCode) {
    for (int code : {0, 1, 3, 127, 128, 254, 255, -1, 259, 70000, INT_MIN})
        EXPECT_EQ(ksl_system2(exiting_with(code).c_str()), code);
}

TEST(System2Test, PassesCharactersOfTheAnsiPageExactlyAndRefusesOthers) {
    ASSERT_EQ(GetACP(), 1252u) << "the cases are written for this page";
    EXPECT_EQ(ksl_system2((child + "unit \xC3\xA4").c_str()), 0xE4);
    EXPECT_EQ(ksl_system2((child + "unit \xE2\x82\xAC").c_str()), 0x20AC);
    for (const char* refused : {"\xE2\x86\x92", "\xC4\x80", "\xF0\x9F\x98\x80", "\xE9"}) {
        SetLastError(77);
        EXPECT_EQ(ksl_system2((child + "unit " + refused).c_str()), -1);
        EXPECT_EQ(GetLastError(), DWORD(ERROR_FILE_NOT_FOUND)) << "as for a missing program";
    }
}

// Replacements for the calls of a start, in the order in which they are made. Each leaves its mark
// in errno and the last-error code; freeing and closing disturb both, as they are allowed to.
void* freed;

void disturbing_free(void* block) {
    freed = block;
    std::free(block);
    errno = 88;
    SetLastError(88);
}
BOOL WINAPI disturbing_close(HANDLE handle) {
    const BOOL closed = CloseHandle(handle);
    errno = 88;
    SetLastError(88);
    return closed;
}
int fail() {
    errno = 77;
    SetLastError(77);
    return 0;
}
char* failing_strdup(const char*) {
    fail();
    return nullptr;
}
char* line_given;

// Writes into the line, as the platform may.
BOOL WINAPI failing_start(LPCSTR, LPSTR line, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL,
                          DWORD, LPVOID, LPCSTR, LPSTARTUPINFOA, LPPROCESS_INFORMATION) {
    line_given = line;
    std::memset(line, '#', std::strlen(line));
    return fail();
}
DWORD WINAPI failing_wait(HANDLE, DWORD) {
    fail();
    return WAIT_FAILED;
}
DWORD WINAPI abandoned_wait(HANDLE, DWORD) {
    fail();
    return WAIT_ABANDONED;
}
BOOL WINAPI failing_exit_code(HANDLE, DWORD* code) {
    *code = 5;
    return fail();
}

TEST(System2Test, EveryFailureIsReportedAndGivesEverythingBack) {
    using Function = void (*)();
    const struct {
        const char* call;
        Function replacement;
    } failures[] = {
        {"_strdup", reinterpret_cast<Function>(failing_strdup)},
        {"CreateProcessA", reinterpret_cast<Function>(failing_start)},
        {"WaitForSingleObject", reinterpret_cast<Function>(failing_wait)},
        {"WaitForSingleObject", reinterpret_cast<Function>(abandoned_wait)},
        {"GetExitCodeProcess", reinterpret_cast<Function>(failing_exit_code)},
    };
    const char* const command = "bin\\child.exe exit 3";  // in read-only memory
    ASSERT_EQ(ksl_system2(command), 3);
    const long handles = handle_count();
    ImportPatch free_patch("free", disturbing_free), close_patch("CloseHandle", disturbing_close);
    for (const auto& f : failures) {
        ImportPatch patch(f.call, f.replacement);
        freed = line_given = nullptr;
        EXPECT_EQ(ksl_system2(command), -1) << f.call;
        EXPECT_EQ(errno, 77) << f.call;
        EXPECT_EQ(GetLastError(), 77u) << f.call;
        EXPECT_EQ(handle_count(), handles) << f.call;
        EXPECT_EQ(freed != nullptr, f.replacement != failures[0].replacement) << f.call;
        EXPECT_TRUE(!line_given || line_given == freed) << "the copy is given back";
    }
    EXPECT_EQ(ksl_system2(command), 3);
    EXPECT_EQ(handle_count(), handles);
}

int allocations_left = -1;  // from here on they fail; negative: never

void* limited_malloc(size_t size) {
    if (allocations_left == 0) return nullptr;
    if (allocations_left > 0) --allocations_left;
    return std::malloc(size);
}

TEST(System2Test, OutOfMemoryAnywhereIsMinusOne) {
    const std::string command = child + "unit \xC3\xA4";
    ImportPatch patch("libstdc++-6.dll", "malloc", limited_malloc);
    int failures = -1, result = -1, error = 0;
    for (bool as_expected = true; as_expected && result == -1; ++failures) {
        errno = 0;
        allocations_left = failures + 1;
        result = ksl_system2(command.c_str());
        error = errno;
        allocations_left = -1;
        as_expected = result == 0xE4 || error == ENOMEM;
    }
    EXPECT_EQ(result, 0xE4);
    EXPECT_GE(failures, 2) << "the wide and the narrow text both need memory";
}

TEST(System2Test, MissingProgramsAndNull) {
    EXPECT_EQ(ksl_system2("bin\\no_such_program.exe"), -1);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(ksl_system2(""), -1);
    errno = 0;
    EXPECT_EQ(ksl_system2(nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST(SystemTest, ForwardsToTheInterpreter) {
    EXPECT_EQ(ksl_system(exiting_with(7).c_str()), 7);
    EXPECT_EQ(ksl_system("exit 300"), 300);
    EXPECT_EQ(ksl_system("no_such_program"), 9009);
    EXPECT_NE(ksl_system(nullptr), 0) << "there is an interpreter";
}

TEST(PipeTest, ReadsWhatTheCommandPrintsAndDiscardsItsExitStatus) {
    FILE* stream = ksl_popen("echo out& exit 1", "r");
    ASSERT_NE(stream, nullptr);
    char line[16] = "";
    EXPECT_STREQ(std::fgets(line, sizeof line, stream), "out\n");
    EXPECT_EQ(ksl_pclose(stream), 0);
}

TEST(PipeTest, WritesWhatTheCommandReads) {
    FILE* stream = ksl_popen((child + "save piped.txt").c_str(), "w");
    ASSERT_NE(stream, nullptr);
    std::fputs("in\n", stream);
    EXPECT_EQ(ksl_pclose(stream), 0) << "the child exits with 1";
    FILE* file = std::fopen("piped.txt", "r");
    ASSERT_NE(file, nullptr);
    char line[16] = "";
    EXPECT_STREQ(std::fgets(line, sizeof line, file), "in\n");
    std::fclose(file);
    std::remove("piped.txt");
}

int pclose_result;
int replaced_pclose(FILE*) {
    return pclose_result;
}

TEST(PipeTest, OnlyNegativeCloseResultsReachTheCaller) {
    ImportPatch patch("_pclose", replaced_pclose);
    const int results[][2] = {{0, 0}, {1, 0}, {INT_MAX, 0}, {-1, -1}, {-7, -7}, {INT_MIN, INT_MIN}};
    for (const auto& r : results) {
        pclose_result = r[0];
        EXPECT_EQ(ksl_pclose(stdout), r[1]);
    }
}

TEST(PipeTest, RefusesBadArguments) {
    const char* const bad[][2] = {{nullptr, "r"}, {"exit 0", nullptr}, {"exit 0", "x"}};
    for (const auto& b : bad) {
        errno = 0;
        EXPECT_EQ(ksl_popen(b[0], b[1]), nullptr);
        EXPECT_EQ(errno, EINVAL);
    }
    errno = 0;
    EXPECT_EQ(ksl_pclose(nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
}

}  // namespace
