// The platform's own words for its error codes.
#ifndef UTIL_INTERNAL_ERROR_TEXT_H
#define UTIL_INTERNAL_ERROR_TEXT_H

#include <string>

namespace util {

// The system's text for a code of GetLastError, in the user's language and UTF-8, with the line end
// that the system puts behind it; "" when it has none. Inserts ("%1") stay as they are, so the text
// must never serve as a format. Leaves errno and the last error alone; any thread may call it.
// Raises std::bad_alloc.
//     error_text(5)   // "Access is denied.\r\n"
std::string error_text(unsigned long code);

}  // namespace util

#endif
