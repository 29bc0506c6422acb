// Converts text between UTF-8, the platform's wide (UTF-16) strings and the process's ANSI code
// page. The library keeps every text in UTF-8; all its texts change encoding by the code behind
// these four functions.
//
// Any thread may call them; they share nothing. An input ends at its NUL. Invalid UTF-8 and
// unpaired surrogates become U+FFFD, as the platform does it; they are no failure. A null input or
// output pointer is a failure. So is a text of 2,147,483,647 bytes or units and more: the platform
// cannot count it.
#ifndef UTIL_PORTABLE_UTF8_H
#define UTIL_PORTABLE_UTF8_H

#include "util/export.h"
#include "util/text/byte_string.h"

class _bstr_t;  // <comutil.h>: the platform's reference-counted wide string

UTIL_EXTERN_C_BEGIN

// Converts wide to UTF-8. Returns true on success. Returns false and sets `*out` to the empty text
// when the text cannot be converted or when out of memory.
//     String s;
//     UTIL_WideCharToUtf8(L"caf\u00E9", &s)   // true, s is "caf\xC3\xA9"
UTIL_API bool UTIL_WideCharToUtf8(const wchar_t* wide, String* out);

// Converts wide to the process's ANSI code page. The platform replaces a character that the page
// lacks: by a similar one ("A" for a fullwidth A, the page's best fit), else by the page's default
// character, usually "?". So never use the result as the name of a file. Returns true on success.
// Returns false and leaves `*out` unchanged on failure. Always fails in a process whose ANSI page
// is UTF-8: the platform refuses the flags of this conversion for that page.
//     UTIL_WcharToMultiByte(L"abc", &s)   // true, s is "abc"
UTIL_API bool UTIL_WcharToMultiByte(const wchar_t* wide, String* out);

// Converts UTF-8 to wide. Returns true on success. Returns false and sets `*out` to an empty
// _bstr_t when the text cannot be converted. Raises the platform's _com_error with 0x8007000E (out
// of memory) when the wide string cannot be allocated. This is the one exception that leaves this
// file, and with it the wrappers of utf8_files.h, which convert their paths here.
//     _bstr_t w;
//     UTIL_Utf8ToWideChar("caf\xC3\xA9", &w)   // true, w is L"caf\u00E9"
UTIL_API bool UTIL_Utf8ToWideChar(const char* utf8, _bstr_t* out);

// Converts UTF-8 to the ANSI code page: UTIL_Utf8ToWideChar, then UTIL_WcharToMultiByte. Fails as
// the failing step does and leaves `*out` unchanged.
UTIL_API bool UTIL_Utf8ToMultiByte(const char* utf8, String* out);

UTIL_EXTERN_C_END

#endif
