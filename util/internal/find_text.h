// Not installed. Searching a text for another in linear time, whatever they are.
#ifndef UTIL_INTERNAL_FIND_TEXT_H
#define UTIL_INTERNAL_FIND_TEXT_H

#include <cstddef>
#include <string_view>

namespace util {

// Position of the first `what` in text at or after pos, or npos. The empty text is found at every
// position up to the end. May raise std::bad_alloc.
//
// The standard library's find compares anew at every place where the first byte fits, which takes
// the product of both lengths for texts that repeat themselves.
std::size_t find_text(std::string_view text, std::string_view what, std::size_t pos = 0);

}  // namespace util

#endif
