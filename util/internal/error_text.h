// The platform's texts for its error codes.
#ifndef UTIL_INTERNAL_ERROR_TEXT_H
#define UTIL_INTERNAL_ERROR_TEXT_H

#include <string>

namespace util {

// Returns the system's text for a code of GetLastError, or "" if it has none. The text is in the
// user's language and UTF-8, with the line end that the system adds. Inserts ("%1") are unchanged,
// so never use the text as a format. Preserves errno and the last error. Any thread may call it.
// Raises std::bad_alloc.
//     error_text(5)   // "Access is denied.\r\n"
std::string error_text(unsigned long code);

}  // namespace util

#endif
