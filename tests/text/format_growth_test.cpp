// Watches the one formatting buffer from a fresh start, so it runs in a process of its own and its
// cases in the order they stand.
#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/import_patch.h"
#include "util/text/byte_string.h"

using util_test::ImportPatch;

namespace {

using Formatter = int(char*, size_t, size_t, const char*, _locale_t, va_list);

Formatter* real_formatter;
std::vector<size_t> sizes_seen;

int spy(char* buffer, size_t size, size_t count, const char* fmt, _locale_t locale, va_list args) {
    sizes_seen.push_back(size);
    return real_formatter(buffer, size, count, fmt, locale, args);
}

int raising(char*, size_t, size_t, const char*, _locale_t, va_list) {
    throw std::runtime_error("formatter");
}

// A formatter of the kind that reports the length it needs instead of -1.
int reporting_length(char* buffer, size_t size, size_t, const char* fmt, _locale_t, va_list args) {
    sizes_seen.push_back(size);
    return vsnprintf(buffer, size, fmt, args);
}

// As the runtime counts a text of more than INT_MAX bytes.
int uncountable(const char*, va_list) {
    return -1;
}

void* failing_new(size_t) {
    throw std::bad_alloc();
}

constexpr char name[] = "_vsnprintf_s_l";
using Sizes = std::vector<size_t>;

class FormatGrowthTest : public testing::Test {
  protected:
    void SetUp() override {
        real_formatter = m_patch.original<Formatter>();
        sizes_seen.clear();
    }
    // The size in which a short text is formatted.
    size_t buffer_size() {
        sizes_seen.clear();
        String::format("x");
        return sizes_seen.at(0);
    }
    ImportPatch m_patch{name, spy};
};

TEST_F(FormatGrowthTest, StartsAt1024AndGrowsInTheDocumentedSteps) {
    EXPECT_EQ(buffer_size(), 1024u);
    const struct {
        int length;
        size_t size_after;
    } steps[] = {
        {1023, 1024},  {1024, 4096},     {1025, 4096},     {4095, 4096},   {4096, 8192},
        {8192, 12288}, {12288, 16384},   {16384, 20480},   {20480, 24576}, {24576, 126976},
        {10, 126976},  {126975, 126976}, {126976, 229376},
    };
    for (const auto& step : steps) {
        EXPECT_EQ(String::format("%*s", step.length, "").size(), size_t(step.length));
        EXPECT_EQ(buffer_size(), step.size_after) << "after " << step.length << " bytes";
    }
}

TEST_F(FormatGrowthTest, RejectedFormatsGiveTheEmptyTextAndNoGrowth) {
    const size_t before = buffer_size();
    for (const char* fmt : {"%m", "text%m"}) {
        errno = 77;
        EXPECT_EQ(String::format(fmt, 1), "") << fmt;
        EXPECT_EQ(errno, 77) << "formatting leaves errno alone";
    }
    EXPECT_EQ(buffer_size(), before);
    const std::string rejected_late = "%*s%m";
    EXPECT_EQ(String::format(rejected_late.c_str(), int(before) + 5, ""), "");
}

TEST_F(FormatGrowthTest, TakesAReportedLengthToTheNextWholeStep) {
    const size_t before = buffer_size();
    const int length = static_cast<int>(before) + 1;
    sizes_seen.clear();
    String text;
    {
        ImportPatch patch(name, reporting_length);
        text = String::format("%*s", length, "x");
    }
    EXPECT_EQ(text.size(), size_t(length));
    ASSERT_EQ(sizes_seen.size(), 2u);
    const size_t step = 102400;  // where the growth above has left it
    EXPECT_EQ(sizes_seen[1], (size_t(length) / step + 1) * step);
}

TEST_F(FormatGrowthTest, LockIsFreeAfterAFormatterOrAnAllocationRaises) {
    const int huge = static_cast<int>(buffer_size()) + 1;
    {
        ImportPatch patch(name, raising);
        EXPECT_THROW(String::format("x"), std::runtime_error);
    }
    {
        ImportPatch patch("_Znay", failing_new);
        EXPECT_THROW(String::format("%*s", huge, ""), std::bad_alloc);
    }
    String text;
    std::thread([&] { text = String::format("%d", 42); }).join();
    EXPECT_EQ(text, "42");
    EXPECT_EQ(buffer_size(), size_t(huge) - 1) << "a failed growth leaves the size";
    EXPECT_EQ(String::format("%*s", huge, "").size(), size_t(huge));
}

TEST_F(FormatGrowthTest, TextsLongerThanAnIntAreRefusedAtOnce) {
    const int too_long = static_cast<int>(buffer_size());
    {
        ImportPatch patch("_vscprintf", uncountable);
        EXPECT_THROW(String::format("%*s", too_long, ""), std::bad_alloc);
    }
    SetLastError(77);
    EXPECT_EQ(String::format("%*s", too_long, "").size(), size_t(too_long));
    EXPECT_EQ(GetLastError(), 77u) << "growing leaves the last error alone";
}

TEST_F(FormatGrowthTest, HostProgramsLocaleChangesNothing) {
    ASSERT_NE(setlocale(LC_ALL, "German"), nullptr);
    EXPECT_EQ(String(1.5), "1.500000");
    EXPECT_EQ(String("\xA0"
                     "5")
                  .to_int(),
              0)
        << "0xA0 is white space in that locale";
    EXPECT_EQ(String("\xE4").to_upper(), "\xE4");
    setlocale(LC_ALL, "C");
}

}  // namespace
