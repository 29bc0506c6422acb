// Makes each allocation of a call fail in turn. The runtime DLL's malloc serves operator new too.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <new>

#include "support/import_patch.h"
#include "util/text/text.h"

using extstl::ExtDate;
using extstl::ExtTime;

namespace {

using Malloc = void*(size_t);

Malloc* real_malloc;
int until_failure;  // 0: none fails (any more)

void* failing_malloc(size_t size) {
    if (until_failure > 0 && --until_failure == 0) return nullptr;
    return real_malloc(size);
}

// Calls with the first, the second, ... allocation failing, and checks after each, until none is
// left to fail.
template <typename Call, typename Check>
void fail_each_allocation(Call call, Check check) {
    util_test::ImportPatch patch("libstdc++-6.dll", "malloc", failing_malloc);
    real_malloc = patch.original<Malloc>();
    for (int n = 1;; ++n) {
        until_failure = n;
        try {
            call();
        } catch (const std::bad_alloc&) {
        }
        if (until_failure > 0) {
            EXPECT_GT(n, 1) << "nothing was allocated";
            until_failure = 0;
            return;
        }
        check();
    }
}

const String text("a text longer than any short string holds");

TEST(TextOutOfMemoryTest, OutputsAndTargetsStayAsTheyWere) {
    String document("<x>"), value("untouched");
    fail_each_allocation([&] { UTIL_addTag(document, text, text); },
                         [&] { EXPECT_EQ(document, "<x>"); });
    EXPECT_EQ(document, "<x><" + text + ">" + text + "</" + text + ">");

    int result = 1;
    const auto untouched = [&] { EXPECT_TRUE(result == -1 && value == "untouched"); };
    fail_each_allocation([&] { result = UTIL_extractTag(document, text, value); }, untouched);
    EXPECT_EQ(value, text);
    value = "untouched";
    fail_each_allocation(
        [&] { result = UTIL_XMLParserExtractTagXml(&document, &text, &value, true); }, untouched);
    EXPECT_EQ(value, text);

    const ExtTime source(ExtDate(17, 5, 2010), 12, 30, 45, text);
    ExtTime target(ExtDate(1, 2, 2003), 4, 5, 6, "UTC");
    const std::int64_t before = target.time();
    fail_each_allocation([&] { target = source; },
                         [&] {
                             EXPECT_TRUE(target.time() == before && target.label().str() == "UTC");
                             EXPECT_EQ(target.toString().str(), "2003 02 01 04:05:06");
                         });
    EXPECT_EQ(target.label().str(), text.str());
}

TEST(TextOutOfMemoryTest, ReadingATimeGivesTheCurrentOne) {
    const String written("2010/05/17 12:30:45 a_label_longer_than_any_short_string_holds");
    std::int64_t time = 0;
    fail_each_allocation([&] { time = written.toDate().time(); },
                         [&] { EXPECT_LE(std::abs(time - std::time(nullptr)), 60); });
    EXPECT_LT(time, std::time(nullptr) - 60);
}

}  // namespace
