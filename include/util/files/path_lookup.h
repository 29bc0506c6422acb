// Finding files: along a search list, against the current directory, beside the running program.
#ifndef UTIL_FILES_PATH_LOOKUP_H
#define UTIL_FILES_PATH_LOOKUP_H

#include "util/export.h"
#include "util/files/file_attr.h"
#include "util/text/byte_string.h"

// Paths are UTF-8. These functions return "" for a name that cannot be resolved or does not exist.
// The attribute arguments have no effect: files and directories are found alike, whatever the mask
// says.
//
// Any thread may call these, but the current directory and the environment belong to the whole
// process. They raise std::bad_alloc when out of memory, and what UTF8_stat raises then.
namespace Tools {

// Returns whether UTF8_stat finds the path: a file or a directory. Null is a path that does not
// exist.
//     fileExists("C:\\Windows")   // true
UTIL_API bool fileExists(const char* path);

// Returns the directory of the running program, with a backslash at its end. Returns "" when the
// platform does not tell it. Neither argument has an effect.
//
// The library asks the platform by its ANSI call, with room for 260 bytes: keep programs at paths
// that fit. Where that call replaced characters that its code page lacks, the result is the true
// name, which the wide call returns.
//     find_location("", FileAttr::any)   // "C:\agent\bin\"
UTIL_API String find_location(const String& name, FileAttr attr);

// Returns the existing path that a name stands for, by the first of these forms that fits:
//   "C:..."   its second byte is ":": the name as it is, ".." included.
//   no ".."   searched along PATH, never in the current directory: the first element under which
//             the name exists. Elements that begin with "%", unexpanded references, are skipped. An
//             element that ends in "\" or "/" is followed by the name at once, any other by "\" and
//             the name.
//   ".."      taken from the current directory: the name's parts between "\" (or, when that gives
//             a single part, between "/") are appended with "\". Each ".." removes the last
//             component, if there is one. "." is a part like any other and is kept.
// By design a name shorter than two bytes raises std::out_of_range with the message
// "invalid string position".
//     absolute_pathname("cmd.exe", FileAttr::exec)   // "C:\Windows\system32\cmd.exe"
//     absolute_pathname("..\\x", FileAttr::any)      // in C:\agent: "C:\x"
//     absolute_pathname(".\\..\\x", FileAttr::any)   // in C:\agent: "C:\agent\x"
UTIL_API String absolute_pathname(const String& path, FileAttr attr);

// The same, but searches `search_list` unless it is empty. Its elements are separated by ";", and
// empty ones are dropped. By design a hit rewrites `search_list` to ";" and the element of the hit,
// once for each element after it: "a;b;c" becomes ";a;a" after a hit in a, and "" after a hit in c.
// `search_list` is unchanged without a hit, and in the other forms.
UTIL_API String absolute_pathname(const String& path, String& search_list, FileAttr attr);

}  // namespace Tools

#endif
