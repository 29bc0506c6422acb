#include "util/host/device_name.h"

#include <gtest/gtest.h>

#include "util/host/clone_sync.h"

namespace {

TEST(DeviceNameTest, FourSpellingsAnywhere) {
    for (const char* text : {"Talvora", "a talvora", "TalVora 1", "TALVORA", "tAlvora Talvora"})
        EXPECT_TRUE(UTIL_isBKDevice(text)) << text;
    for (const char* text : {"tAlvora", "TALVora", "talVora", "Talvor", ""})
        EXPECT_FALSE(UTIL_isBKDevice(text)) << text;
    EXPECT_FALSE(UTIL_isBKDevice(nullptr));
}

TEST(CloneSyncTest, IsFalseUntilACallerSetsIt) {
    EXPECT_FALSE(g_bCloneSyncSerialized);
}

}  // namespace
