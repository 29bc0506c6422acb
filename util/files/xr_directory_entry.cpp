#include "util/files/xr_directory_entry.h"

#include <sys/stat.h>

XrDirectoryEntry::XrDirectoryEntry(const String& name, int mode, long size)
    : String(name), m_mode(mode), m_size(size) {}

XrDirectoryEntry::XrDirectoryEntry(const XrDirectoryEntry& other) = default;
XrDirectoryEntry& XrDirectoryEntry::operator=(const XrDirectoryEntry& other) = default;
XrDirectoryEntry::~XrDirectoryEntry() = default;

String XrDirectoryEntry::getName() const {
    return *this;
}
int XrDirectoryEntry::getMode() const {
    return m_mode;
}
long XrDirectoryEntry::getSize() const {
    return m_size;
}
bool XrDirectoryEntry::isDirectory() const {
    return (m_mode & _S_IFDIR) != 0;
}

bool XrDirectoryEntry::operator<(const XrDirectoryEntry& other) const {
    return view() < other.view();
}
