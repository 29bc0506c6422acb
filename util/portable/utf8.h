// Text between UTF-8, the platform's wide (UTF-16) strings and the process's ANSI code page. The
// library keeps every text in UTF-8; these four are the only places where encoding changes hands.
//
// Any thread may call them; they share nothing. Inputs end at their NUL. Invalid UTF-8 and unpaired
// surrogates become U+FFFD, as the platform does it; they are no failure. A null input or output
// pointer is one.
#ifndef UTIL_PORTABLE_UTF8_H
#define UTIL_PORTABLE_UTF8_H

#include "util/export.h"
#include "util/text/byte_string.h"

class _bstr_t;  // <comutil.h>: the platform's reference-counted wide string

UTIL_EXTERN_C_BEGIN

// Wide to UTF-8. True on success; false, with *out emptied, when the text cannot be converted or
// memory runs out.
//     String s;
//     UTIL_WideCharToUtf8(L"caf\u00E9", &s)   // true, s is "caf\xC3\xA9"
UTIL_API bool UTIL_WideCharToUtf8(const wchar_t* wide, String* out);

// Wide to the process's ANSI code page; a character that the page lacks becomes the page's own
// replacement, usually "?". True on success; false, with *out untouched, otherwise: also in a
// process whose ANSI page is UTF-8, for which the platform refuses the flags of this conversion.
//     UTIL_WcharToMultiByte(L"abc", &s)   // true, s is "abc"
UTIL_API bool UTIL_WcharToMultiByte(const wchar_t* wide, String* out);

// UTF-8 to wide. True on success; false, with *out set to an empty _bstr_t, when the text cannot be
// converted. Raises the platform's _com_error with 0x8007000E (out of memory) when the wide string
// cannot be allocated: the one exception that leaves this file, and with it the wrappers of
// utf8_files.h, which convert their paths here.
//     _bstr_t w;
//     UTIL_Utf8ToWideChar("caf\xC3\xA9", &w)   // true, w is L"caf\u00E9"
UTIL_API bool UTIL_Utf8ToWideChar(const char* utf8, _bstr_t* out);

// UTF-8 to the ANSI code page: the former two in a row. Fails as the failing step does, with *out
// untouched.
UTIL_API bool UTIL_Utf8ToMultiByte(const char* utf8, String* out);

UTIL_EXTERN_C_END

#endif
