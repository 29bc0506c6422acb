// Reads single texts from the machine's registry. The rules that all readers share are here. The
// differences between them are parameters.
//
// Names and texts are UTF-8. The calls are the platform's ANSI calls. A name that the ANSI page
// cannot hold exactly is a missing one. A text is returned as it is stored, even if the ANSI call
// replaced characters that the page lacks. Any thread may call these functions. They raise
// std::bad_alloc.
#ifndef UTIL_INTERNAL_REGISTRY_H
#define UTIL_INTERNAL_REGISTRY_H

#include <string>

#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace util {

// Opens the key under HKEY_LOCAL_MACHINE with `access` (KEY_READ, GENERIC_READ, ...). Returns no
// key if the platform refuses.
ScopedKey open_machine_key(const char* path, REGSAM access);

// The same, but creates a missing key first.
ScopedKey create_machine_key(const char* path, REGSAM access);

enum class EmptyText { refused, accepted };

// Reads a value into the caller's `buffer` of `size` bytes, and stores its text up to the first NUL
// in `out`. The value must fit with its NUL and be of type REG_SZ or REG_EXPAND_SZ, which is not
// expanded. Its last stored byte must be a NUL. A value of no bytes is the empty text. `empty` says
// whether an empty text is accepted. Returns false, with `out` unchanged, in all other cases.
bool read_text(const ScopedKey& key, const char* name, EmptyText empty, char* buffer, DWORD size,
               std::string& out);

// Reads the bytes of a value of any type as text, up to their first NUL or their end. The value may
// take `room` bytes. Returns 0, or the platform's error code with `out` unchanged.
LSTATUS read_any_type(const ScopedKey& key, const char* name, DWORD room, std::string& out);

}  // namespace util

#endif
