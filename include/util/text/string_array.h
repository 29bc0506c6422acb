// Stores a list of strings in one text: the elements joined by "$".
#ifndef UTIL_TEXT_STRING_ARRAY_H
#define UTIL_TEXT_STRING_ARRAY_H

#include <vector>

#include "util/export.h"
#include "util/text/byte_string.h"

// Returns the elements with "$" between them. Nothing is escaped, and nothing follows the last
// element. An element ends at its first NUL. {"x", "y"} gives "x$y". The empty list gives "".
//
// By design, not every list survives a round trip: reading drops empty elements, and splits an
// element that contains "$".
//
// Any thread may call it. Raises std::bad_alloc when out of memory.
UTIL_API String serializeStrArray(const std::vector<String>& list);

// Returns the list: the fields of `text` between "$", without empty ones. "$x$$y$" gives {"x",
// "y"}. Any thread may call it. Raises std::bad_alloc when out of memory.
UTIL_API std::vector<String> deserializeStrArray(const String& text);

#endif
