#include "util/files/file_attr.h"

namespace Tools {

static_assert(sizeof(FileAttr) == 4, "callers hold masks");

const FileAttr FileAttr::file(0x01);
const FileAttr FileAttr::directory(0x02);
const FileAttr FileAttr::exec(0x04);
const FileAttr FileAttr::no_exec(0x08);
const FileAttr FileAttr::read(0x0F);
const FileAttr FileAttr::no_read(0x10);
const FileAttr FileAttr::write(0x20);
const FileAttr FileAttr::no_write(0x40);
const FileAttr FileAttr::any(0x00);

FileAttr& FileAttr::operator=(const FileAttr& other) = default;

bool FileAttr::operator==(const FileAttr& other) const {
    return (m_mask & other.m_mask) != 0;
}

bool FileAttr::operator!=(const FileAttr& other) const {
    return (m_mask & other.m_mask) == 0;
}

FileAttr FileAttr::operator|(const FileAttr& other) const {
    return FileAttr(m_mask | other.m_mask);
}

}  // namespace Tools
