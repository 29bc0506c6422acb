/// @file
/// `Tools::FileAttr`: what a caller of the path lookup expects a name to be.
#ifndef UTIL_FILES_FILE_ATTR_H
#define UTIL_FILES_FILE_ATTR_H

#include "util/export.h"

namespace Tools {

/// A mask of 32 bits, built from the constants with `|`.
///
/// A value. Nothing here fails. Any thread may use the constants.
///
/// By design, `==` returns whether two masks overlap, not whether they are the same. So nothing is
/// equal to `any`, not even `any` itself. By design, `read` covers the bits of `file`, `directory`,
/// `exec` and `no_exec`.
///
///     FileAttr::file == FileAttr::read                        // true
///     (FileAttr::file | FileAttr::write) == FileAttr::write   // true
///     FileAttr::any != FileAttr::any                          // true
class UTIL_API FileAttr {
  public:
    static const FileAttr file;       ///< 0x01
    static const FileAttr directory;  ///< 0x02
    static const FileAttr exec;       ///< 0x04
    static const FileAttr no_exec;    ///< 0x08
    static const FileAttr read;       ///< 0x0F
    static const FileAttr no_read;    ///< 0x10
    static const FileAttr write;      ///< 0x20
    static const FileAttr no_write;   ///< 0x40
    static const FileAttr any;        ///< 0x00

    /// @{
    /// Copies the mask.
    FileAttr(const FileAttr&) = default;
    FileAttr& operator=(const FileAttr& other);
    /// @}

    bool operator==(const FileAttr& other) const;     ///< Returns whether both share a bit.
    bool operator!=(const FileAttr& other) const;     ///< Returns whether both share no bit.
    FileAttr operator|(const FileAttr& other) const;  ///< Returns the bits of both.

  private:
    constexpr explicit FileAttr(int mask) : m_mask(mask) {}

    int m_mask;
};

}  // namespace Tools

#endif
