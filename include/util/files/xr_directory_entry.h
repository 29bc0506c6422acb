// XrDirectoryEntry: one name in a directory listing.
#ifndef UTIL_FILES_XR_DIRECTORY_ENTRY_H
#define UTIL_FILES_XR_DIRECTORY_ENTRY_H

#include "util/export.h"
#include "util/text/byte_string.h"

// The entry is its own name, without any path, and carries the mode word and the size of its
// status. A value; distinct objects may be used from distinct threads. Raises std::bad_alloc.
class UTIL_API XrDirectoryEntry : public String {
  public:
    XrDirectoryEntry(const String& name, int mode, long size);  // a name with its status

    // Copy name, mode and size; names as String copies and assigns.
    XrDirectoryEntry(const XrDirectoryEntry& other);
    XrDirectoryEntry& operator=(const XrDirectoryEntry& other);
    ~XrDirectoryEntry() override;

    String getName() const;    // the name, as the entry itself
    int getMode() const;       // the runtime's st_mode, file type included
    long getSize() const;      // bytes, low 32 bits; 0 for a drive root
    bool isDirectory() const;  // bit 0x4000 of the mode

    // By name alone, bytes taken as unsigned: "B" comes before "a", "a" before "ab".
    bool operator<(const XrDirectoryEntry& other) const;

  private:
    int m_mode;
    long m_size;
};

#endif
