/// @file
/// Functions for NUL-terminated byte strings, with the same results on every platform.
///
/// Letters and white space are those of ASCII, whatever the locale: bytes from 0x80 up are neither.
/// A status is 0, or -1 for failure. Texts and bytes from ksl_strdup, ksl_unicode2CodedChar and
/// ksl_codedChar2Unicode come from `malloc`, and the caller frees them with `free`. Any thread may
/// call these functions.
///
/// Diagnostics go to standard output. Each is one line: the message, a colon, a blank and the
/// number 3, for example "NULL s1 passed to ksl_strcasecmp: 3".
#ifndef UTIL_PORTABLE_KSL_STRING_H
#define UTIL_PORTABLE_KSL_STRING_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Changes `s` to upper case in place. Returns 0, or -1 if `s` is null.
UTIL_API int ksl_strupper(char* s);

/// Removes leading and trailing white space in place: `"  a b  "` becomes `"a b"`. Returns 0, or -1
/// if `s` is null.
UTIL_API int ksl_strcpy_trim(char* s);

/// Removes leading and trailing white space in place, then changes `s` to upper case. Returns 0, or
/// -1 if `s` is null.
UTIL_API int ksl_strcpy_clean(char* s);

/// Returns a copy on the heap, or null if `s` is null or when out of memory.
UTIL_API char* ksl_strdup(const char* s);

/// Compares two texts. ASCII letters are equal in either case. Returns a negative number, 0 or a
/// positive number.
///
/// The number is the difference of the first bytes that differ, both as signed char, after folding.
/// Without such bytes it is the difference of the lengths. A letter is folded only against a letter
/// of the other case.
///
///     ksl_strcasecmp("ab", "abc")   // -1
///     ksl_strcasecmp("b", "A")      // 1
///     ksl_strcasecmp("[", "a")      // -6
///
/// For a null argument, prints "NULL s1 passed to ksl_strcasecmp" (or s2), then dereferences null
/// (access violation). By design.
UTIL_API int ksl_strcasecmp(const char* s1, const char* s2);

/// Changes `s` to upper or lower case in place. Returns `s`, which may be null.
/// @{
UTIL_API char* ksl_str2upper(char* s);
UTIL_API char* ksl_str2lower(char* s);
/// @}

/// Changes the one byte at `pos` to upper case in place. Returns `s`, or null if `s` is null or
/// `pos` is not below the length. By design, a negative `pos` is not refused: it changes a byte
/// before `s`. `"abc"` with `pos` 1 becomes `"aBc"`.
UTIL_API char* ksl_char2upper(char* s, int pos);

/// Encodes bytes that may contain NUL as a text without NUL. Stores the text, on the heap, in
/// `*out` and returns 0.
///
/// 0x00 becomes 01, 0x01 becomes 02 01, and 0x02 becomes 02 02. Any other byte is unchanged. `pwch`
/// is typically a wide text, and `len` is its size in bytes without its NUL. The function reads
/// exactly `len` + 2 bytes, so the wide NUL is encoded too. With `len` 4, the bytes 41 00 01 00 02
/// 00 become 41 01 02 01 01 02 02 01.
///
/// Returns -1, with `*out` unchanged, after printing one of these messages:
/// - "NULL pwch passed to ksl_unicode2CodedChar"
/// - "Invalid length for ksl_unicode2CodedChar": `len` is below 1.
/// - "Error allocating memory for ksl_unicode2CodedChar": out of memory, or 16 * `len` + 24 exceeds
///   an int.
///
/// A null `out` gives -1 without a message.
UTIL_API int ksl_unicode2CodedChar(const void* pwch, int len, char** out);

/// Decodes the text of ksl_unicode2CodedChar. Stores the bytes, on the heap, in `*out` and returns
/// 0.
///
/// Reads `coded` up to its NUL. The buffer is zeroed and has 8 * `len` bytes, or more if the
/// decoded bytes need more. `""` gives only the zeroed buffer. The number of decoded bytes is not
/// reported. A wide text ends at its own NUL.
///
/// Returns -1, with `*out` unchanged, after printing one of these messages:
/// - "NULL pwch passed to ksl_codedChar2Unicode"
/// - "Invalid length for ksl_codedChar2Unicode": `len` is below 1.
/// - "Error allocating memory for ksl_codedChar2Unicode": out of memory, or 8 * `len` exceeds an
///   int.
/// - "Invalid format for ksl_codedChar2Unicode": neither 01 nor 02 follows a 02.
///
/// A null `out` gives -1 without a message.
UTIL_API int ksl_codedChar2Unicode(const void* coded, int len, char** out);

/// Returns 1 if `token` is one of the words of `token_str`, else 0.
///
/// Words are separated by any number of the bytes in `delimits`. They are never empty. A word
/// matches byte by byte as a whole: `"b"` is a word of `"a, b,c"` with the delimiters `", "`, but
/// `"B"` and `""` are not. The list is searched in place: the function allocates nothing, and
/// leaves the hidden state of `strtok` unchanged.
///
/// For a null argument, prints "NULL token_str passed to ksl_match_token_str", "NULL token passed
/// to ksl_match_token_str_aux" or "NULL delimits passed to ksl_match_token_str_aux", then
/// dereferences null (access violation). By design. If the list has no words, a null `token` is not
/// dereferenced, and the result is 0.
UTIL_API int ksl_match_token_str(const char* token_str, const char* token, const char* delimits);

UTIL_EXTERN_C_END

#endif
