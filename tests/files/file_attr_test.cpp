#include "util/files/file_attr.h"
#include "support/test.h"

using Tools::FileAttr;

namespace {

TEST(FileAttrTest, FixedMasks_ComparisonIsOverlap) {
    const FileAttr constants[] = {FileAttr::file,    FileAttr::directory, FileAttr::exec,
                                  FileAttr::no_exec, FileAttr::read,      FileAttr::no_read,
                                  FileAttr::write,   FileAttr::no_write,  FileAttr::any};
    const int masks[] = {1, 2, 4, 8, 15, 16, 32, 64, 0};
    EXPECT_EQ(std::memcmp(constants, masks, sizeof masks), 0);
    const FileAttr both = FileAttr::file | FileAttr::write;
    EXPECT_TRUE(both == FileAttr::read && both == FileAttr::write && both != FileAttr::exec);
    EXPECT_FALSE(both != FileAttr::file || FileAttr::any == FileAttr::any);
}

}  // namespace
