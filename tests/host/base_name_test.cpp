#include "util/host/base_name.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

TEST(BaseNameTest, WritesTheLastPartBetweenSlashesAndReturnsMinusOne) {
    const std::string part(5000, 'p');  // longer than any buffer of the classic sizes
    const struct {
        std::string path, name;
    } cases[] = {
        {"a/b/c", "c"}, {"a\\b\\c", "a\\b\\c"}, {"c", "c"},
        {"/c", "c"},    {"a//c///", "c"},       {"", ""},
        {"///", ""},    {" / ", " "},           {part + "/" + part + "/", part},
    };
    for (const auto& c : cases) {
        for (auto* function : {UTIL_basename, UTIL_CDPbasename}) {
            // Just the room that the header asks for: the sanitizers see every byte beyond.
            const auto out = std::make_unique<char[]>(c.name.size() + 1);
            EXPECT_EQ(function(out.get(), c.path.c_str()), -1);
            EXPECT_EQ(out.get(), c.name) << c.path;
            std::string in_place = c.path;
            function(in_place.data(), in_place.data());
            EXPECT_EQ(in_place.c_str(), c.name) << c.path;
        }
    }
    char out[] = "before";
    EXPECT_EQ(UTIL_basename(out, nullptr), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(UTIL_basename(nullptr, "a"), -1);
}

}  // namespace
