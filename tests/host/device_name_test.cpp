#include "util/host/device_name.h"

#include <gtest/gtest.h>

#include "util/host/clone_sync.h"

namespace {

TEST(DeviceNameTest, FourSpellingsAnywhere) {
    for (const char* text : {"Talvora", "a talvora", "TalVora 1", "tAlvora TALVORA"})
        EXPECT_TRUE(UTIL_isBKDevice(text)) << text;
    for (const char* text : {"tAlvora", "TALVora", "Talvor", "", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(UTIL_isBKDevice(text)) << (text ? text : "(null)");
    EXPECT_FALSE(g_bCloneSyncSerialized) << "until a caller sets it";
}

}  // namespace
