
#include <new>

#include "support/test.h"
#include "util/text/byte_string.h"

namespace {

using Fields = std::vector<String>;

TEST(SplitTest, SeparatorsAlone_RaiseUnlessEmptyFieldsAreDropped) {
    EXPECT_EQ(String(",,").split(",", true), Fields());
    for (std::uint64_t n = 1; n < 200; ++n) {  // beyond a line of the processor's, too
        const String separators(n, ',');
        EXPECT_THROW(separators.split(",", false), std::bad_alloc) << n;
        EXPECT_EQ((separators + "x").split(",", false).size(), n + 1);
        EXPECT_EQ((separators + "x").split(",", true), Fields{"x"}) << n;
    }
}

}  // namespace
