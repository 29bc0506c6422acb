#include <gtest/gtest.h>

#include <stdexcept>

#include "util/text/byte_string.h"

namespace {

TEST(XmlEscapeTest, OneQuoteAloneIsEscapedButCannotBeDecoded) {
    String text("\"");
    EXPECT_EQ(String(text).replaceXML(), "&quot;");
    EXPECT_THROW(text.placeXML(), std::out_of_range);
    EXPECT_EQ(text, "") << "the first removal has taken it";
}

}  // namespace
