#include "util/portable/ksl_link.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "support/import_patch.h"
#include "util/portable/utf8_files.h"

using util_test::ImportPatch;

namespace {

std::wstring examined;

int spy(const wchar_t* path, struct _stat64*) {
    examined = path;
    errno = 99;
    return -1;
}

// Two backslashes at the end of a wide path become one in the runtime's own hands (one more than
// the library's), so three are needed to see that the library removes no more than one.
TEST(StatusPathTest, OneTrailingBackslashGoesAndOnlyOneCallKnowsBareDrives) {
    const struct {
        const char* given;
        const wchar_t *by_ksl, *by_utf8;
    } cases[] = {{"C:\\", L"C:\\", L"C:\\"},
                 {"C:", L"C:", L"C:\\"},
                 {"\\", L"\\", L"\\"},
                 {"", L"", L""},
                 {"C:\\d\\", L"C:\\d", L"C:\\d"},
                 {"C:\\d\\\\\\", L"C:\\d\\", L"C:\\d\\"},
                 {"\\d\\", L"\\d", L"\\d"},
                 {"\\\\srv\\share\\", L"\\\\srv\\share", L"\\\\srv\\share"},
                 {"/d/", L"/d", L"/d"},
                 {"//srv/share/", L"//srv/share/", L"//srv/share/"},
                 {"r\xC3\xA9plica\\", L"r\u00E9plica", L"r\u00E9plica"},
                 {"a\xE9\\", L"a\uFFFD", L"a\uFFFD"}};
    struct _stat64i32 record;
    ImportPatch patch("_wstat64", spy);
    for (const auto& c : cases) {
        for (auto* call : {ksl_lstat, ksl_stat, UTF8_lstat, UTF8_stat}) {
            const bool is_ksl = call == ksl_lstat || call == ksl_stat;
            EXPECT_EQ(call(c.given, &record), -1);
            EXPECT_EQ(errno, 99) << "the runtime's";
            EXPECT_EQ(examined, is_ksl ? c.by_ksl : c.by_utf8) << c.given;
        }
    }
    for (const std::size_t length : {1023u, 1024u, 1025u, 2000u}) {
        const std::string path = std::string(length, 'd') + "\\";
        for (auto* call : {ksl_lstat, UTF8_lstat}) {
            EXPECT_EQ(call(path.c_str(), &record), -1);
            EXPECT_EQ(examined, std::wstring(length, L'd')) << "neither cut nor refused";
        }
    }
}

TEST(StatusPathTest, FailureZeroesTheRecord) {
    const struct _stat64i32 zeroes = {};
    const std::string long_path(2000, 'd');
    const struct {
        const char *path, *refused;  // the call that fails, or null
        int code;                    // in errno; 0: any
    } cases[] = {{nullptr, nullptr, EINVAL},
                 {"C:\\missing", nullptr, ENOENT},
                 {"C:\\", "MultiByteToWideChar", 0},
                 {long_path.c_str(), "_ZnayRKSt9nothrow_t", 0}};
    for (auto* call : {ksl_lstat, ksl_stat, UTF8_lstat, UTF8_stat}) {
        for (const auto& c : cases) {
            const ImportPatch patch(c.refused ? c.refused : "gethostname", util_test::fails<0>);
            struct _stat64i32 record;
            std::memset(&record, 0xA5, sizeof record);
            EXPECT_EQ(call(c.path, &record), -1);
            EXPECT_EQ(std::memcmp(&record, &zeroes, sizeof record), 0) << &c - cases;
            EXPECT_TRUE(c.code == 0 || errno == c.code) << errno << " in case " << &c - cases;
        }
        EXPECT_EQ(call("C:\\", nullptr), -1);
        EXPECT_EQ(errno, EINVAL);
    }
}

}  // namespace
