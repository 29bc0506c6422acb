/// @file
/// Small helpers that make no system call: base names, byte comparison, device names, a shared
/// flag.
///
/// Any thread may call these functions.
#ifndef UTIL_HOST_HELPERS_H
#define UTIL_HOST_HELPERS_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Writes the last part of `path` between slashes into `out`, with its NUL. By design, always
/// returns -1.
///
/// Writes "" for a path of slashes only, for the empty path and for null. Only "/" separates. A
/// backslash is an ordinary character. Paths may be of any length. `out` needs room for the last
/// part: strlen(path) + 1 bytes are always enough. It may be the buffer of `path`. Writes nothing
/// if `out` is null. Example:
///
///     char name[16];
///     UTIL_basename(name, "a/b/c/");    // "c"
///     UTIL_basename(name, "a\\b\\c");   // "a\b\c"
UTIL_API int UTIL_basename(char* out, const char* path);

/// The same as UTIL_basename.
UTIL_API int UTIL_CDPbasename(char* out, const char* path);

/// Returns whether the first `count` bytes of `a` and `b` are equal.
///
/// Reads no byte after the first difference. Returns true and reads nothing if `count` is below 1.
/// Otherwise a null pointer equals nothing. Example:
///
///     UTIL_IsBinaryEqual("abc", "abd", 2)   // true
UTIL_API bool UTIL_IsBinaryEqual(const void* a, const void* b, int count);

/// Returns whether a device or product text contains the name of the continuous-replication
/// appliance.
///
/// The name has four spellings: "Talvora", "talvora", "TalVora" and "TALVORA". Returns false for
/// null. Example:
///
///     UTIL_isBKDevice("TALVORA VDisk 0001")   // true
///     UTIL_isBKDevice("tAlvora")              // false
UTIL_API bool UTIL_isBKDevice(const char* text);

/// A flag that the callers in one process share. Initially false. The library neither reads nor
/// writes it. Its meaning and its thread rules are up to those callers.
extern UTIL_API bool g_bCloneSyncSerialized;

UTIL_EXTERN_C_END

#endif
