#include "util/files/file_attr.h"

#include <gtest/gtest.h>

#include <cstring>

using Tools::FileAttr;

namespace {

TEST(FileAttrTest, ComparisonIsOverlapOfTheFixedMasks) {
    const FileAttr constants[] = {FileAttr::file,    FileAttr::directory, FileAttr::exec,
                                  FileAttr::no_exec, FileAttr::read,      FileAttr::no_read,
                                  FileAttr::write,   FileAttr::no_write,  FileAttr::any};
    const int masks[] = {1, 2, 4, 8, 15, 16, 32, 64, 0};
    for (int i = 0; i < 9; ++i) {
        for (int k = 0; k < 9; ++k) {
            EXPECT_EQ(constants[i] == constants[k], (masks[i] & masks[k]) != 0) << i << " " << k;
            EXPECT_EQ(constants[i] != constants[k], (masks[i] & masks[k]) == 0) << i << " " << k;
            const FileAttr both = constants[i] | constants[k];
            const int expected = masks[i] | masks[k];
            EXPECT_EQ(std::memcmp(&both, &expected, sizeof expected), 0) << i << " " << k;
        }
    }
}

}  // namespace
