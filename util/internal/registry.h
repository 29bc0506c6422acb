// Reads single texts of the machine's registry. The rules that all readers share are
// here once; what differs between them is a parameter.
//
// Names and texts are UTF-8; the calls are the platform's ANSI ones. A name that the ANSI page
// cannot hold names nothing. A text is the stored one, also where the ANSI call replaced characters
// that the page lacks. Any thread may call these functions. They raise std::bad_alloc.
#ifndef UTIL_INTERNAL_REGISTRY_H
#define UTIL_INTERNAL_REGISTRY_H

#include <string>

#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace util {

// The key under HKEY_LOCAL_MACHINE, opened with the access (KEY_READ, GENERIC_READ, ...); none when
// the platform refuses.
ScopedKey open_machine_key(const char* path, REGSAM access);

// The same, but a missing key is made first.
ScopedKey create_machine_key(const char* path, REGSAM access);

enum class EmptyText { refused, accepted };

// Reads a value through the caller's buffer of size bytes, its NUL included, and gives its text up
// to the first NUL. False, with out untouched, unless the value exists, fits, is of type REG_SZ or
// REG_EXPAND_SZ (which is not expanded) and its last stored byte is a NUL; a value of no bytes is
// the empty text. Whether an empty text will do is the caller's choice.
bool read_text(const ScopedKey& key, const char* name, EmptyText empty, char* buffer, DWORD size,
               std::string& out);

// Reads the bytes of a value of any type as text up to their first NUL or their end: 0, or the
// platform's error code with out untouched. room is how many bytes the value may take.
LSTATUS read_any_type(const ScopedKey& key, const char* name, DWORD room, std::string& out);

}  // namespace util

#endif
