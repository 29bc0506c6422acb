/// @file
/// Reads a program's command line one option at a time.
#ifndef UTIL_HOST_UTIL_GETOPT_H
#define UTIL_HOST_UTIL_GETOPT_H

#ifdef __cplusplus
#include <type_traits>
#endif

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Reads the argument at `*index` and returns its second character as the option, 0 to 255.
///
/// `*index` starts at 1, after the program's name, and advances to the next unread argument.
/// `letters` holds the options that take an argument of their own, each followed by ":". For those,
/// `*argument` becomes the next entry of `args`, which is then skipped. For others `*argument`
/// becomes null. The text belongs to `args`.
///
/// Returns -1, with `*argument` unchanged, if `*index` is outside of `count`. A null entry or
/// pointer also gives -1. An argument of fewer than two characters gives 0.
///
/// By design:
/// - The first character need not be a dash.
/// - An option that is not in `letters` is returned like any other.
/// - A missing argument is read from after the last one. So `args` must end in a null entry, as
///   the arguments of `main` do.
///
/// Any thread may call it. It keeps no state. Example:
///
///     // args: {"agent", "-b", "value", "-x", nullptr}, count 4, letters "ab:"
///     int index = 1;
///     const char* argument;
///     UTIL_getopt(4, args, "ab:", &index, &argument)   // 'b'; "value", index 3
///     UTIL_getopt(4, args, "ab:", &index, &argument)   // 'x'; null, index 4
///     UTIL_getopt(4, args, "ab:", &index, &argument)   // -1
UTIL_API int UTIL_getopt(int count, const char* const* args, const char* letters, int* index,
                         const char** argument);

UTIL_EXTERN_C_END

#ifdef __cplusplus
/// The same for an `argument` of type `char*`. It is a template, so that a null pointer selects the
/// function. Because of it, the address of UTIL_getopt needs the type:
///
///     int (*get)(int, const char* const*, const char*, int*, const char**) = &UTIL_getopt;
template <typename Char, std::enable_if_t<std::is_same_v<Char, char>, int> = 0>
int UTIL_getopt(int count, const char* const* args, const char* letters, int* index,
                Char** argument) {
    return UTIL_getopt(count, args, letters, index, const_cast<const char**>(argument));
}
#endif

#endif
