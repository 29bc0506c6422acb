// A list of strings kept in one text value: the elements joined by "$".
#ifndef UTIL_TEXT_STRING_ARRAY_H
#define UTIL_TEXT_STRING_ARRAY_H

#include <vector>

#include "util/export.h"
#include "util/text/byte_string.h"

// The elements one after another with "$" between them; no escaping, nothing at the end. Each is
// written up to its first NUL. {"x", "y"} gives "x$y"; the empty list gives "".
//
// Not every list survives the way back, and both halves keep it so: an empty element is lost on
// reading and one that holds "$" comes back as several.
//
// May be called from any thread; raises std::bad_alloc when memory runs out.
UTIL_API String serializeStrArray(const std::vector<String>& list);

// The list read back: the fields of text between "$", empty ones dropped, text unchanged.
// "$x$$y$" gives {"x", "y"}. May be called from any thread; raises std::bad_alloc.
UTIL_API std::vector<String> deserializeStrArray(const String& text);

#endif
