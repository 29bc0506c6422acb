/// @file
/// Finds files: along a search list, against the current directory, beside the running program.
#ifndef UTIL_FILES_PATH_LOOKUP_H
#define UTIL_FILES_PATH_LOOKUP_H

#include "util/export.h"
#include "util/files/file_attr.h"
#include "util/text/byte_string.h"

/// Path lookup.
///
/// Paths are UTF-8. The functions return `""` for a name that cannot be resolved or does not exist.
/// The attribute arguments have no effect: files and directories are found alike, whatever the mask
/// says.
///
/// Any thread may call the functions, but the current directory and the environment belong to the
/// whole process. They raise std::bad_alloc when out of memory, and what UTF8_stat() raises then.
namespace Tools {

/// Returns whether UTF8_stat() finds the path: a file or a directory. Null does not exist.
///
///     fileExists("C:\\Windows")   // true
UTIL_API bool fileExists(const char* path);

/// Returns the directory of the running program, with a backslash at its end. Returns `""` if the
/// platform does not name it. Neither argument has an effect.
///
/// The library asks the platform by its ANSI call, with room for 260 bytes: keep programs at paths
/// that fit. If that call replaced characters that its code page lacks, the result is the true
/// name, which the wide call returns.
///
///     find_location("", FileAttr::any)   // "C:\agent\bin\"
UTIL_API String find_location(const String& name, FileAttr attr);

/// Returns the existing path that a name means. The first of these forms that fits counts:
///
///     form      how it is resolved
///     "C:..."   The second byte is ":". The name as it is, ".." included.
///     no ".."   Searched along PATH, never in the current directory. The result is in the first
///               element under which the name exists. Elements that begin with "%", unexpanded
///               references, are skipped. The name follows an element that ends in "\" or "/"
///               directly. Otherwise "\" stands between the two.
///     ".."      Taken from the current directory. The name's parts between "\" (or, if that gives
///               a single part, between "/") are appended with "\". Each ".." removes the last
///               component, if there is one. "." is a part like any other and is kept.
///
/// By design, a name shorter than two bytes raises std::out_of_range with the message
/// `"invalid string position"`.
///
///     absolute_pathname("cmd.exe", FileAttr::exec)   // "C:\Windows\system32\cmd.exe"
///     absolute_pathname("..\\x", FileAttr::any)      // in C:\agent: "C:\x"
///     absolute_pathname(".\\..\\x", FileAttr::any)   // in C:\agent: "C:\agent\x"
UTIL_API String absolute_pathname(const String& path, FileAttr attr);

/// Returns the same, but searches `search_list` instead of `PATH` unless it is empty. Its elements
/// are separated by `";"`. Empty elements are dropped.
///
/// By design, a hit rewrites `search_list` to `";"` and the element of the hit, once for each
/// element after it. `"a;b;c"` becomes `";a;a"` after a hit in `a`, and `""` after a hit in `c`.
/// `search_list` is unchanged without a hit, and in the other forms.
UTIL_API String absolute_pathname(const String& path, String& search_list, FileAttr attr);

}  // namespace Tools

#endif
