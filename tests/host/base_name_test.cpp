#include "util/host/base_name.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

TEST(BaseNameTest, WritesTheLastPartBetweenSlashesAndReturnsMinusOne) {
    const std::string part(5000, 'p');  // longer than any buffer of the classic sizes
    const std::string cases[][2] = {
        {"a/b/c", "c"}, {"a\\b", "a\\b"}, {"/c", "c"},  {"a//c///", "c"},
        {"", ""},       {"///", ""},      {" / ", " "}, {part + "/" + part + "/", part},
    };
    for (const auto& [path, name] : cases) {
        for (auto* function : {UTIL_basename, UTIL_CDPbasename}) {
            // Just the room that the header asks for: the sanitizers see every byte beyond.
            const auto out = std::make_unique<char[]>(name.size() + 1);
            EXPECT_EQ(function(out.get(), path.c_str()), -1);
            EXPECT_EQ(out.get(), name) << path;
        }
        std::string in_place = path;
        UTIL_basename(in_place.data(), in_place.data());
        EXPECT_EQ(in_place.c_str(), name) << path;
    }
    char out[] = "before";
    EXPECT_EQ(UTIL_basename(out, nullptr), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(UTIL_basename(nullptr, "a"), -1);
}

}  // namespace
