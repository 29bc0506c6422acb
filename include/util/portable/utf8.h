/// @file
/// Converts text between UTF-8, the platform's wide (UTF-16) strings and the process's ANSI code
/// page. The library keeps every text in UTF-8. All its conversions use the code of these four
/// functions.
///
/// Any thread may call these functions. They share no state. An input ends at its NUL. Invalid
/// UTF-8 and unpaired surrogates are no failure: they become U+FFFD, as the platform does it. A
/// null input or output pointer is a failure. So is a text of 2,147,483,647 bytes or units or more:
/// the platform cannot count it.
#ifndef UTIL_PORTABLE_UTF8_H
#define UTIL_PORTABLE_UTF8_H

#include "util/export.h"
#include "util/text/byte_string.h"

class _bstr_t;  // <comutil.h>: the platform's reference-counted wide string

UTIL_EXTERN_C_BEGIN

/// Converts `wide` to UTF-8. Returns true on success. Returns false and sets `*out` to the empty
/// text if the text cannot be converted, or if out of memory.
///
///     String s;
///     UTIL_WideCharToUtf8(L"caf\u00E9", &s)   // true, s is "caf\xC3\xA9"
UTIL_API bool UTIL_WideCharToUtf8(const wchar_t* wide, String* out);

/// Converts `wide` to the process's ANSI code page. Returns true on success. Returns false and
/// leaves `*out` unchanged on failure. Always fails in a process whose ANSI page is UTF-8: the
/// platform refuses the flags of this conversion for that page.
///
/// The platform replaces a character that the page lacks. It takes the page's best fit, such as "A"
/// for a fullwidth A. Without a best fit it takes the page's default character, usually "?". So
/// never use the result as the name of a file.
///
///     UTIL_WcharToMultiByte(L"abc", &s)   // true, s is "abc"
UTIL_API bool UTIL_WcharToMultiByte(const wchar_t* wide, String* out);

/// Converts `utf8` to a wide string. Returns true on success. Returns false and sets `*out` to an
/// empty `_bstr_t` if the text cannot be converted.
///
/// Raises the platform's `_com_error` with 0x8007000E (out of memory) if the wide string cannot be
/// allocated. No other function here raises an exception, except UTIL_Utf8ToMultiByte and the
/// wrappers of utf8_files.h, which call this one.
///
///     _bstr_t w;
///     UTIL_Utf8ToWideChar("caf\xC3\xA9", &w)   // true, w is L"caf\u00E9"
UTIL_API bool UTIL_Utf8ToWideChar(const char* utf8, _bstr_t* out);

/// Converts `utf8` to the ANSI code page: calls UTIL_Utf8ToWideChar, then UTIL_WcharToMultiByte.
/// Fails as the failing step does, and leaves `*out` unchanged.
UTIL_API bool UTIL_Utf8ToMultiByte(const char* utf8, String* out);

UTIL_EXTERN_C_END

#endif
