// Watches the one formatting buffer from a fresh start, so it runs in a process of its own and its
// cases in the order they stand.

#include <climits>
#include <clocale>
#include <cstdarg>
#include <new>
#include <thread>

#include "support/import_patch.h"
#include "support/test.h"
#include "torture/resources.h"
#include "util/text/byte_string.h"

using util_test::ImportPatch;

namespace {

using Formatter = int(char*, size_t, size_t, const char*, _locale_t, va_list);

Formatter* real_formatter;
std::vector<size_t> sizes_seen;
// A formatter that raises, or one of the kind that reports the length it needs instead of -1.
enum { as_it_is, raising, reporting } manner;

int spy(char* buffer, size_t size, size_t count, const char* fmt, _locale_t locale, va_list args) {
    sizes_seen.push_back(size);
    if (manner == raising) throw std::runtime_error("formatter");
    if (manner == reporting) return vsnprintf(buffer, size, fmt, args);
    return real_formatter(buffer, size, count, fmt, locale, args);
}

int counted;
int counting(const char*, _locale_t, va_list) {
    return counted;
}

void* failing_new(size_t) {
    throw std::bad_alloc();
}

class FormatGrowthTest : public testing::Test {
  protected:
    FormatGrowthTest() { real_formatter = m_patch.original<Formatter>(); }
    // The size of the shared buffer: where a text is made that fits no smaller one.
    size_t buffer_size() {
        manner = as_it_is;
        sizes_seen.clear();
        String::format("%1024s", "x");
        return sizes_seen.at(1);
    }
    ImportPatch m_patch{"_vsnprintf_s_l", spy};
};

TEST_F(FormatGrowthTest, ShortTextsAreMadeInTheCallsOwnSpace) {
    EXPECT_EQ(String::format("%1023s", "x").size() + String::format("%s", "y").size(), 1024u);
    EXPECT_EQ(sizes_seen, std::vector<size_t>{1024});
}

TEST_F(FormatGrowthTest, RejectedFormatsGiveTheEmptyTextAndNoGrowth) {
    const auto rejected_after = [](size_t length, const char* format) {
        errno = 77;
        EXPECT_EQ(String::format(format, String(length, 'x').c_str(), L"\x20ac"), "") << length;
        EXPECT_EQ(errno, 77) << "formatting leaves errno alone";
    };
    // The runtime counts %m, but not the character that has no byte.
    for (const char* format : {"%s%m", "%s%ls"}) {
        for (const size_t length : {0, 2000, 5000})
            rejected_after(length, format);
    }
    EXPECT_EQ(buffer_size(), 4096u);
    rejected_after(2000, "%s%ls");
}

TEST_F(FormatGrowthTest, GrowsInTheDocumentedSteps) {
    const std::pair<int, size_t> steps[] = {
        {1024, 4096},   {4095, 4096},   {4096, 8192},    {8192, 12288},    {12288, 16384},
        {16384, 20480}, {20480, 24576}, {24576, 126976}, {126976, 229376}, {229377, 331776}};
    for (const auto& [length, size_after] : steps) {
        // Every other step by the runtime, and the rest by the library's own conversions.
        const int most = length - 3;
        const String text =
            length / 4096 % 2 ? String::format("%*s%c%d%c", most, "", 'x', 7, 'y')
                              : String::format("%s%c%d%c", String::pad(most).c_str(), 'x', 7, 'y');
        EXPECT_EQ(text, String::pad(most) + "x7y");
        EXPECT_EQ(buffer_size(), size_after) << "after " << length << " bytes";
    }
}

TEST_F(FormatGrowthTest, TakesAReportedLengthToTheNextWholeStep) {
    const size_t length = buffer_size() + 1;
    const size_t step = 102400;  // where the growth above has left it
    manner = reporting;
    EXPECT_EQ(String::format("%*s", int(length), "x").size(), length);
    EXPECT_EQ(buffer_size(), (length / step + 1) * step);
}

TEST_F(FormatGrowthTest, FailuresLeaveTheLockFreeAndTheSizeAsItWas) {
    const size_t before = buffer_size();
    const int huge = static_cast<int>(before) + 1;
    manner = raising;
    EXPECT_THROW(String::format("%1s", "x"), std::runtime_error);
    manner = as_it_is;
    const auto grow = [&] { return String::format("%*s", huge, "").size(); };
    const String long_text = String::pad(huge);
    const auto grow_plainly = [&] { return String::format("%s", long_text.c_str()).size(); };
    const auto raises_with = [&](const char* name, auto* replacement, auto growing) {
        const ImportPatch patch(name, replacement);
        EXPECT_THROW(growing(), std::bad_alloc) << name;
    };
    raises_with("_Znay", failing_new, grow);
    raises_with("_Znay", failing_new, grow_plainly);
    // More than INT_MAX bytes, which the runtime does not count or counts wrongly.
    for (const int wrong : {-1, 0, INT_MAX, huge - 2})
        counted = wrong, raises_with("_vscprintf_l", counting, grow);
    String text;
    std::thread([&] { text = String::format("%d", 42); }).join();
    EXPECT_EQ(text, "42");
    EXPECT_EQ(buffer_size(), before);
    SetLastError(77);
    EXPECT_EQ(grow(), size_t(huge));
    EXPECT_EQ(GetLastError(), 77u) << "growing leaves the last error alone";
}

TEST_F(FormatGrowthTest, EachLoadOfTheLibraryLeavesTheSharedBufferAlone) {
    char path[1000];  // of the library, and then of a copy that the tests do not hold
    const DWORD size = GetModuleFileNameA(GetModuleHandleA("util.dll"), path, 900);
    const std::string original = path;
    strcpy(path + size - 4, "_copy.dll");
    ASSERT_TRUE(CopyFileA(original.c_str(), path, FALSE));
    const auto blocks_left = [&](int cycles, int length) {
        const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
        long before = 0;
        for (int i = 0; i <= cycles; ++i) {
            if (i == 1) before = torture::blocks_of(heap);  // the first load is the platform's
            const HMODULE library = LoadLibraryA(path);
            const auto format = reinterpret_cast<String (*)(const char*, ...)>(
                reinterpret_cast<void*>(GetProcAddress(library, "_ZN6String6formatEPKcz")));
            EXPECT_EQ(format("%*s", length, "").size(), size_t(length));
            FreeLibrary(library);
        }
        return torture::blocks_of(heap) - before;
    };
    EXPECT_EQ(blocks_left(1000, 1023), 0);
    EXPECT_EQ(blocks_left(10, 1024), 10);
    DeleteFileA(path);
}

TEST_F(FormatGrowthTest, HostProgramsLocaleChangesNothing) {
    ASSERT_NE(setlocale(LC_ALL, "German"), nullptr);
    EXPECT_EQ(String(1.5), "1.500000");
    EXPECT_EQ(String("\xA0\x35").to_int(), 0) << "0xA0 is white space in that locale";
    EXPECT_EQ(String("\xE4").to_upper(), "\xE4");
    setlocale(LC_ALL, "C");
}

}  // namespace
