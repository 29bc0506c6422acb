/// @file
/// `XrDirectory`: a directory named by its path, with a sorted listing. Also tests and removes
/// directories.
#ifndef UTIL_FILES_XR_DIRECTORY_H
#define UTIL_FILES_XR_DIRECTORY_H

#include "util/export.h"
#include "util/files/ptr_sorted_vector.h"
#include "util/files/xr_directory_entry.h"
#include "util/text/byte_string.h"

/// A directory named by its path, with a sorted listing.
///
/// Paths are UTF-8. The empty path means the list of the machine's drive roots. Each member says
/// how it reports a failure of the file system. Raises std::bad_alloc, and what the `UTF8_` calls
/// raise when out of memory, but nothing for a failure of the file system. One object belongs to
/// one thread at a time.
///
///     XrDirectory directory("C:\\agent");
///     if (directory.isValid()) {
///         for (XrDirectoryEntry* entry : *directory.getDirectoryList(false, false)) {
///             std::cout << entry->getName() << '\n';
///         }
///     }
class UTIL_API XrDirectory {
  public:
    /// The type of a listing.
    using List = extstl::ExtPtrSortedVector<XrDirectoryEntry, XrDirectoryEntry>;

    /// Checks once whether the directory exists. isValid() returns the result.
    explicit XrDirectory(const String& path);

    /// Copies the path, its validity, and the pointer to the listing.
    ///
    /// By design, copies share the listing, and the copy that is destroyed first deletes it for
    /// both. So at most one of two copies may hold a listing when it is destroyed. Call destroy()
    /// on one and init() on the other.
    XrDirectory(const XrDirectory& other);

    /// Copies like the constructor. By design, drops the target's listing without freeing it, as
    /// init() does.
    XrDirectory& operator=(const XrDirectory& other);

    virtual ~XrDirectory();

    /// Sets another path. By design, drops an earlier listing without freeing it, because a caller
    /// may still hold it. Call destroy() first to free it.
    void init(const String& path);

    /// Returns true for the empty path and for a directory that existed when the path was set.
    bool isValid() const;

    /// Returns the path as it was given.
    String getPath() const;

    /// Deletes the listing and its entries.
    void destroy();

    /// Returns the entries, sorted by name.
    ///
    /// Skips `"."` and `".."`, and names that begin with a dot unless `include_hidden` is true. For
    /// the empty path, returns the drive roots (mode 0x4000, size 0). The list and its entries stay
    /// owned by this object.
    ///
    /// The first listing is kept and returned again without access to the disk. By design,
    /// `refresh` ADDS the entries found now to those kept, so that each is listed twice. Call
    /// destroy() first for a fresh listing.
    ///
    /// Mode and size of an entry are those of UTF8_stat() for its full path, as of the moment when
    /// the search found it. They are 0 if that status fails, for instance for a name on another
    /// system's disk that no path can have (a control character, a quote, one of `* : < > ? |` and
    /// backslash, half a surrogate pair).
    ///
    /// If the directory cannot be read, prints `"Failed to open directory: "`, the path and a line
    /// end to standard output, and returns the entries kept so far. A drive's root without any
    /// entry counts as unreadable. If the platform ends a search early, returns the entries found
    /// so far.
    List* getDirectoryList(bool include_hidden, bool refresh);

    /// Stores the kilobytes (1024 bytes) available to the caller and returns 0. Stores 0 and
    /// returns -1 if the platform fails. Returns -1 for a null pointer.
    int getFreeSpace(double* kilobytes) const;

    /// Returns whether `path` is an existing directory.
    static bool IsDirectory(const String& path);

    /// @{
    /// Creates nothing and returns 0. Kept for old callers. UTIL_makeNewNTDir() creates a
    /// directory.
    static int CreateDirectoryA(const char* path);
    static int CreateDirectoryA(const String& path);
    /// @}

    /// @{
    /// Removes an empty directory. Returns 0, or errno: 22 for an empty or null path and for every
    /// failed removal.
    static int DeleteDirectory(const char* path);
    static int DeleteDirectory(const String& path);
    /// @}

    /// @{
    /// Removes the directory and then each of its ancestors, each only if it is empty. Files and
    /// other subdirectories stay.
    ///
    /// Returns errno: 0 if every removal succeeded, 1 otherwise, and 22 for an empty or null path.
    /// By design, a path that begins with a drive always returns 1, because the last removal is
    /// that of the drive's root. By design, each step cuts the path before the FIRST occurrence of
    /// the component's text: after `C:\ab\x\a` comes `C:\`.
    static int DeleteDirectoryTree(const char* path);
    static int DeleteDirectoryTree(const String& path);
    /// @}

  private:
    String m_path;
    bool m_valid;
    List* m_list;  // owned; null until the first listing
};

#endif
