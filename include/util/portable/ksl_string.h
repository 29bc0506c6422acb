// Plain functions over NUL-ended byte strings, with the same answers on every platform.
#ifndef UTIL_PORTABLE_KSL_STRING_H
#define UTIL_PORTABLE_KSL_STRING_H

#include "util/export.h"

// Letters and white space are those of ASCII: bytes from 0x80 up are neither, whatever the locale.
// A status is 0, or -1 for failure. Buffers handed out come from malloc and belong to the caller,
// who frees them with free. All may be called from any thread.
//
// Diagnostics go to standard output, each as one line of the message, a colon and the number 3:
// "NULL s1 passed to ksl_strcasecmp: 3".
UTIL_EXTERN_C_BEGIN

// In place, to upper case. -1 only when s is null.
UTIL_API int ksl_strupper(char* s);

// In place, without leading and trailing white space: "  a b  " becomes "a b". -1 only when s is
// null.
UTIL_API int ksl_strcpy_trim(char* s);

// In place, trimmed and then in upper case. -1 only when s is null.
UTIL_API int ksl_strcpy_clean(char* s);

// A copy on the heap; null when s is null or memory runs out.
UTIL_API char* ksl_strdup(const char* s);

// Negative, 0 or positive, with ASCII letters of either case taken as equal. The number is the
// difference of the first bytes that differ, both as signed char, after folding; or of the lengths.
// A letter is folded only against a letter of the other case. "ab" against "abc" is -1, "b"
// against "A" is 1, "[" against "a" is -6.
// A null argument prints "NULL s1 passed to ksl_strcasecmp" (or s2) and then ends in a fault; this
// is meant.
UTIL_API int ksl_strcasecmp(const char* s1, const char* s2);

// In place, to upper or lower case; returns s, null for null.
UTIL_API char* ksl_str2upper(char* s);
UTIL_API char* ksl_str2lower(char* s);

// In place, the one byte at pos to upper case; returns s. Null when s is null or pos is not below
// the length. A negative pos is not refused, and this is meant: it reaches bytes before s.
// ("abc", 1) gives "aBc".
UTIL_API char* ksl_char2upper(char* s, int pos);

// Bytes that may hold NUL as a text without one, on the heap: 0x00 becomes 01, 0x01 becomes 02 01,
// 0x02 becomes 02 02, any other byte itself. pwch is typically wide text and len its size in bytes
// without its NUL; exactly len + 2 bytes are read, so that a wide NUL is taken in. With len 4,
// 41 00 01 00 02 00 becomes 41 01 02 01 01 02 02 01.
// -1 and *out left as it is, with a message: "NULL pwch passed to ksl_unicode2CodedChar"; "Invalid
// length for ksl_unicode2CodedChar" for a len below 1; "Error allocating memory for
// ksl_unicode2CodedChar", also when 16 * len + 24 exceeds an int. A null out is -1 without one.
UTIL_API int ksl_unicode2CodedChar(const void* pwch, int len, char** out);

// The way back: coded is read up to its NUL, and the bytes are stored in a zeroed heap buffer of
// 8 * len bytes, or more when they need more. "" gives just the zeroed buffer. The number of
// decoded bytes is not reported; wide text ends at its own NUL.
// -1 and *out left as it is, with a message: "NULL pwch passed to ksl_codedChar2Unicode"; "Invalid
// length for ksl_codedChar2Unicode" for a len below 1; "Error allocating memory for
// ksl_codedChar2Unicode", also when 8 * len exceeds an int; "Invalid format for
// ksl_codedChar2Unicode" for a 02 that neither 01 nor 02 follows. A null out is -1 without one.
UTIL_API int ksl_codedChar2Unicode(const void* coded, int len, char** out);

// 1 when token is one of the words of token_str, else 0. Words lie between bytes of delimits, any
// number of them; they are never empty, and equal only byte by byte as a whole: "b" is a word of
// "a, b,c" for ", ", "B" and "" are not.
// The list is read where it stands: there is no copy that could fail for want of memory, and the
// hidden state of strtok stays untouched.
// A null argument prints "NULL token_str passed to ksl_match_token_str", or "NULL token passed to
// ksl_match_token_str_aux" (or delimits), and then ends in a fault when it is used; this is meant.
// A null token is not used, and gives 0, when the list has no words.
UTIL_API int ksl_match_token_str(const char* token_str, const char* token, const char* delimits);

UTIL_EXTERN_C_END

#endif
