
#include "support/test.h"
#include "util/text/byte_string.h"

namespace {

TEST(ReplaceTest, ArgumentsMayPointIntoTheObjectAndLiteralsChooseTheFormMeant) {
    String s("ab-ab-ab");
    EXPECT_EQ(s.replace(s.c_str() + 6, s, String::SCOPE_ALL), "ab-ab-ab-ab-ab-ab-ab-ab-ab");
    EXPECT_EQ(s.replace(s, s.c_str() + 24, String::SCOPE_FIRST), "ab");
    EXPECT_EQ(s.replace(0, 1, "x"), "xb");
    EXPECT_EQ(s.replace("x", nullptr, String::SCOPE_ALL), "b");
    EXPECT_EQ(s.replace("b", String("+")), "+");
}

}  // namespace
