// XrDirectory: a directory by its path, with a sorted listing, and the primitives on directories.
#ifndef UTIL_FILES_XR_DIRECTORY_H
#define UTIL_FILES_XR_DIRECTORY_H

#include "util/export.h"
#include "util/files/ptr_sorted_vector.h"
#include "util/files/xr_directory_entry.h"
#include "util/text/byte_string.h"

// Paths are UTF-8. The empty path stands for the list of the machine's drive roots. File-system
// failures are never raised; each member says how it reports them. Raises std::bad_alloc, and what
// the UTF8_ calls raise when they have no memory. One object belongs to one thread at a time.
//
//     XrDirectory directory("C:\\agent");
//     if (directory.isValid()) {
//         for (XrDirectoryEntry* entry : *directory.getDirectoryList(false, false)) {
//             std::cout << entry->getName() << '\n';
//         }
//     }
class UTIL_API XrDirectory {
  public:
    // What a listing is.
    using List = extstl::ExtPtrSortedVector<XrDirectoryEntry, XrDirectoryEntry>;

    // Looks once whether the directory is there; see isValid().
    explicit XrDirectory(const String& path);

    // Copies share the listing: whichever is destroyed first deletes it for both. So at most one of
    // two copies may hold a listing when it goes; call destroy() on one, init() on the other. A
    // listing that the target of an assignment holds is dropped without being freed, as by init().
    // Both are meant.
    XrDirectory(const XrDirectory& other);
    XrDirectory& operator=(const XrDirectory& other);

    virtual ~XrDirectory();

    // Points the object at another path. A listing made before is dropped without being freed (a
    // caller may still hold it; call destroy() first to free it). Meant as it is.
    void init(const String& path);

    // True for the empty path and for an existing directory.
    bool isValid() const;
    String getPath() const;

    // Deletes the listing and its entries.
    void destroy();

    // The entries in order of their names, without "." and ".." and, unless include_hidden, without
    // names that begin with a dot; the drive roots (mode 0x4000, size 0) for the empty path. The
    // first listing is kept and returned again without a look at the disk. With refresh the entries
    // found now are ADDED to those kept, so that each stands twice; this is meant: call destroy()
    // first for a fresh listing. The list and its entries stay owned by this object.
    // An entry whose status cannot be had has mode and size 0. When the directory cannot be read,
    // prints "Failed to open directory: " and the path to standard output and returns what there
    // is; so it does for a drive's root that holds nothing, which even lacks ".". A search that the
    // platform breaks off gives what was found until then.
    List* getDirectoryList(bool include_hidden, bool refresh);

    // Stores the kilobytes (1024 bytes) free for the caller and returns 0; stores 0 and returns -1
    // when the platform cannot tell; -1 for a null pointer.
    int getFreeSpace(double* kilobytes) const;

    // Whether the path is an existing directory.
    static bool IsDirectory(const String& path);

    // Create nothing and return 0; kept for old callers.
    static int CreateDirectoryA(const char* path);
    static int CreateDirectoryA(const String& path);

    // Removes an empty directory: 0, or errno, which is 22 for an empty or null path and for every
    // failed removal.
    static int DeleteDirectory(const char* path);
    static int DeleteDirectory(const String& path);

    // Removes the directory and then each of its ancestors, each only if it is empty; files and
    // subdirectories stay. Returns errno: 0 when every removal succeeded, 1 otherwise, and 22 for
    // an empty or null path. Two things are meant: a path that begins with a drive ends with an
    // attempt at the drive's root and so always gives 1; and each step cuts the path before the
    // FIRST occurrence of the component's text, so "C:\ab\x\a" goes on with "C:\".
    static int DeleteDirectoryTree(const char* path);
    static int DeleteDirectoryTree(const String& path);

  private:
    String m_path;
    bool m_valid;
    List* m_list;  // owned; null until the first listing
};

#endif
