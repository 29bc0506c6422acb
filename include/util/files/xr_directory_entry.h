/// @file
/// `XrDirectoryEntry`: one name in a directory listing.
#ifndef UTIL_FILES_XR_DIRECTORY_ENTRY_H
#define UTIL_FILES_XR_DIRECTORY_ENTRY_H

#include "util/export.h"
#include "util/text/byte_string.h"

/// One entry of a listing. It is its own name, without any path, and has the mode and the size of
/// its status.
///
/// A value. Distinct objects may be used from distinct threads. Raises std::bad_alloc.
class UTIL_API XrDirectoryEntry : public String {
  public:
    XrDirectoryEntry(const String& name, int mode, long size);  ///< A name with its status.

    /// @{
    /// Copies mode and size. Copies and assigns the name as String does.
    XrDirectoryEntry(const XrDirectoryEntry& other);
    XrDirectoryEntry& operator=(const XrDirectoryEntry& other);
    /// @}
    ~XrDirectoryEntry() override;

    String getName() const;  ///< Returns the name, which is the entry itself.
    int getMode() const;     ///< Returns the runtime's `st_mode`, file type included.
    long getSize() const;    ///< Returns the low 32 bits of the size in bytes; 0 for a drive root.
    bool isDirectory() const;  ///< Returns bit 0x4000 of the mode.

    /// Compares names alone, as unsigned bytes: `"B"` comes before `"a"`, `"a"` before `"ab"`.
    bool operator<(const XrDirectoryEntry& other) const;

  private:
    int m_mode;
    long m_size;
};

#endif
