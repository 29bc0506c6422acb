#include "util/host/helpers.h"

#include <gtest/gtest.h>

#include <climits>
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

TEST(BinaryEqualTest, ReadsUpToTheFirstDifferenceOnly) {
    const char one = 'a', other = 'b';  // the sanitizers see every byte beyond
    EXPECT_FALSE(UTIL_IsBinaryEqual(&one, &other, INT_MAX));
    EXPECT_FALSE(UTIL_IsBinaryEqual("a\0b", "a\0c", 3));
    EXPECT_TRUE(UTIL_IsBinaryEqual("a\0b", "a\0c", 2));
    EXPECT_TRUE(UTIL_IsBinaryEqual(nullptr, "a", 0));
    EXPECT_TRUE(UTIL_IsBinaryEqual(nullptr, "a", INT_MIN));
    EXPECT_FALSE(UTIL_IsBinaryEqual(nullptr, "a", 1));
    EXPECT_FALSE(UTIL_IsBinaryEqual("a", nullptr, 1));
}

TEST(DeviceNameTest, FourSpellingsAnywhere) {
    for (const char* text : {"Talvora", "a talvora", "TalVora 1", "tAlvora TALVORA"})
        EXPECT_TRUE(UTIL_isBKDevice(text)) << text;
    for (const char* text : {"tAlvora", "TALVora", "Talvor", "", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(UTIL_isBKDevice(text)) << (text ? text : "(null)");
    EXPECT_FALSE(g_bCloneSyncSerialized) << "until a caller sets it";
}

}  // namespace
