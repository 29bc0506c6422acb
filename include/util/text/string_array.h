/// @file
/// Stores a list of strings in one text: the elements joined by "$".
///
/// Any thread may call these functions. They raise `std::bad_alloc` if out of memory.
#ifndef UTIL_TEXT_STRING_ARRAY_H
#define UTIL_TEXT_STRING_ARRAY_H

#include <vector>

#include "util/export.h"
#include "util/text/byte_string.h"

/// Returns the elements with `"$"` between them. An element ends at its first NUL. Nothing is
/// escaped, and nothing follows the last element. `{"x", "y"}` gives `"x$y"`. The empty list gives
/// `""`.
///
/// By design, not every list survives a round trip: deserializeStrArray drops empty elements, and
/// splits an element that contains `"$"`.
UTIL_API String serializeStrArray(const std::vector<String>& list);

/// Returns the fields of `text` between `"$"`, without empty ones. `"$x$$y$"` gives `{"x", "y"}`.
UTIL_API std::vector<String> deserializeStrArray(const String& text);

#endif
