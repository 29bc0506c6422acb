// Finding files: along a search list, against the current directory, beside the running program.
#ifndef UTIL_FILES_PATH_LOOKUP_H
#define UTIL_FILES_PATH_LOOKUP_H

#include "util/export.h"
#include "util/files/file_attr.h"
#include "util/text/byte_string.h"

// Paths are UTF-8. A name that cannot be resolved or does not exist gives "". The attribute
// arguments have no effect: files and directories are found alike, whatever the mask says.
//
// Any thread may call these, but the current directory and the environment belong to the whole
// process. They raise std::bad_alloc when memory runs out, and what UTF8_stat raises then.
namespace Tools {

// Whether UTF8_stat finds the path: a file or a directory. Null is a path that does not exist.
//     fileExists("C:\\Windows")   // true
UTIL_API bool fileExists(const char* path);

// The directory of the running program, with its backslash at the end; "" when the platform does
// not tell it. Neither argument has an effect. Asked through the ANSI code page, in which other
// characters come as a best fit or "?", and into 260 bytes: keep programs at paths that fit.
//     find_location("", FileAttr::any)   // "C:\agent\bin\"
UTIL_API String find_location(const String& name, FileAttr attr);

// The existing path that a name stands for, by the first of these forms that fits:
//   "C:..."   its second byte is ":": the name as it is, ".." included.
//   no ".."   searched along PATH, never in the current directory: the first element under which
//             the name exists. Elements that begin with "%", references that nobody has expanded,
//             are skipped. An element that ends in "\" or "/" is followed by the name at once, any
//             other by "\" and the name.
//   ".."      taken from the current directory: the name's parts between "\" (or, when that gives
//             a single part, between "/") are appended with "\", and each ".." takes the last
//             component away again, if there is one. "." is a part like any other and is kept.
// Meant as it is: a name shorter than two bytes raises std::out_of_range with the message
// "invalid string position".
//     absolute_pathname("cmd.exe", FileAttr::exec)   // "C:\Windows\system32\cmd.exe"
//     absolute_pathname("..\\x", FileAttr::any)      // in C:\agent: "C:\x"
//     absolute_pathname(".\\..\\x", FileAttr::any)   // in C:\agent: "C:\agent\x"
UTIL_API String absolute_pathname(const String& path, FileAttr attr);

// The same, but searches search_list, elements separated by ";" (empty ones are dropped), unless it
// is empty. Meant as it is: after a hit search_list becomes ";" and the element of the hit, once
// for each element behind it, so "a;b;c" becomes ";a;a" after a hit in a, and "" after a hit in c.
// Without a hit, and in the other forms, it stays as it was.
UTIL_API String absolute_pathname(const String& path, String& search_list, FileAttr attr);

}  // namespace Tools

#endif
