#include "util/portable/ksl_link.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <new>
#include <string>

#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/portable/utf8_files.h"

using util_test::ImportPatch;
using util_test::ScratchDirectory;

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
        const wchar_t* by_ksl;
        const wchar_t* by_utf8;
    } cases[] = {
        {"C:\\", L"C:\\", L"C:\\"},
        {"C:", L"C:", L"C:\\"},
        {"\\", L"\\", L"\\"},
        {"", L"", L""},
        {"C:\\d\\", L"C:\\d", L"C:\\d"},
        {"C:\\d\\\\\\", L"C:\\d\\", L"C:\\d\\"},
        {"r\xC3\xA9plica\\", L"r\u00E9plica", L"r\u00E9plica"},
        {"a\xE9\\", L"a\uFFFD", L"a\uFFFD"},
    };
    struct _stat64i32 record;
    EXPECT_EQ(UTF8_lstat("C:", &record), 0);
    EXPECT_EQ(ksl_lstat("C:", &record), -1);
    ImportPatch patch("_wstat64", spy);
    for (const auto& c : cases) {
        for (auto* call : {ksl_lstat, ksl_stat, UTF8_lstat, UTF8_stat}) {
            const bool is_ksl = call == ksl_lstat || call == ksl_stat;
            EXPECT_EQ(call(c.given, &record), -1);
            EXPECT_EQ(errno, 99) << "the runtime's";
            EXPECT_EQ(examined, is_ksl ? c.by_ksl : c.by_utf8) << c.given;
        }
    }
}

// A directory whose path has exactly that many bytes.
std::string directory_of(std::size_t length) {
    static const ScratchDirectory scratch;
    std::string path = scratch.path();
    while (path.size() < length) {
        const std::size_t missing = length - path.size();
        const std::size_t step = missing > 202 ? 101 : missing > 101 ? missing / 2 : missing;
        path += "\\" + std::string(step - 1, 'd');
        UTF8_mkdir(path.c_str());
    }
    return path;
}

TEST(StatusPathTest, LongPathsAreNeitherCutNorRefused) {
    for (std::size_t length : {258, 259, 260, 1022, 1023, 1024, 1025, 1026, 2000}) {
        const std::string plain = directory_of(length - 1);
        for (auto* call : {ksl_lstat, UTF8_lstat}) {
            struct _stat64i32 expected;
            struct _stat64i32 record;
            ASSERT_EQ(call(plain.c_str(), &expected), 0) << length;
            EXPECT_EQ(call((plain + "\\").c_str(), &record), 0) << length;
            EXPECT_TRUE(record.st_mode & S_IFDIR);
            EXPECT_EQ(call((plain + "x\\").c_str(), &record), -1) << length;
            EXPECT_EQ(errno, ENOENT);
        }
    }
}

void* no_block(size_t, const std::nothrow_t&) {
    return nullptr;
}

TEST(StatusPathTest, NullPointersAndNoMemory) {
    struct _stat64i32 record;
    for (auto* call : {ksl_lstat, UTF8_lstat}) {
        errno = 77;
        EXPECT_EQ(call(nullptr, &record), -1);
        EXPECT_EQ(errno, EINVAL);
        errno = 77;
        EXPECT_EQ(call("C:\\", nullptr), -1);
        EXPECT_EQ(errno, EINVAL);
    }
    ImportPatch patch("_ZnayRKSt9nothrow_t", no_block);
    EXPECT_EQ(ksl_lstat(std::string(1025, 'x').c_str(), &record), -1);
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(ksl_lstat("C:\\", &record), 0) << "usual lengths need none";
}

TEST(LinkTest, LinksAreNotSupported) {
    EXPECT_EQ(ksl_readlink("C:\\", nullptr, 0), -1);
    EXPECT_EQ(ksl_read_link_chain("C:\\"), -1);
}

}  // namespace
