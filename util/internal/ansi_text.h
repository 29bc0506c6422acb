// Not installed. Narrow texts are UTF-8 everywhere in the library; a call of the platform's that
// takes or gives text in the process's ANSI code page is converted right there, with these.
//
// A conversion is exact or it fails: a text that became another one ("?" for a character that the
// page lacks, "e" for an accented one) could name another file or run another program.
//
// On failure out stays as it was and the last-error code is unspecified: the caller reports what
// its own contract says, mostly a missing path. Both may be called from any thread and raise
// std::bad_alloc. Texts of ASCII alone, the usual case, are copied without asking the platform.
#ifndef UTIL_INTERNAL_ANSI_TEXT_H
#define UTIL_INTERNAL_ANSI_TEXT_H

#include <string>

namespace util {

// Fails for null, for invalid UTF-8 and for a character that the page cannot hold exactly.
// With page 1252, "\xC3\xA9" gives "\xE9" and "\xE2\x86\x92" (an arrow) fails.
bool utf8_to_ansi(const char* utf8, std::string& out);

// Fails for null and for bytes that mean nothing in the page. With page 1252, "\xE9" gives
// "\xC3\xA9".
bool ansi_to_utf8(const char* ansi, std::string& out);

}  // namespace util

#endif
