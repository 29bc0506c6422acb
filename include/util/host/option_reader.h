// Reading a program's command line one option at a time.
#ifndef UTIL_HOST_OPTION_READER_H
#define UTIL_HOST_OPTION_READER_H

#ifdef __cplusplus
#include <type_traits>
#endif

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Takes the argument at *index and returns its second character, 0 to 255, as the option; -1 when
// *index is not within count, with *argument as it was. *index moves on to what comes next; it
// starts at 1, behind the program's name. letters holds the options that take an argument of their
// own, each followed by ":"; for those the next entry of args goes into *argument and is passed
// over, for others *argument becomes null. What it points to belongs to args.
//
// Meant as it is: the first character need not be a dash; an option that is not in letters is
// returned like any other; and an argument that is missing is taken from behind the last one. So
// args must have a null entry after its count, as main's have. An argument of fewer than two
// characters gives 0; a null entry or pointer gives -1. Keeps nothing; any thread may call it.
//
//     // args: {"agent", "-b", "value", "-x", nullptr}, count 4, letters "ab:"
//     int index = 1;
//     const char* argument;
//     UTIL_getopt(4, args, "ab:", &index, &argument)   // 'b'; "value", index 3
//     UTIL_getopt(4, args, "ab:", &index, &argument)   // 'x'; null, index 4
//     UTIL_getopt(4, args, "ab:", &index, &argument)   // -1
UTIL_API int UTIL_getopt(int count, const char* const* args, const char* letters, int* index,
                         const char** argument);

UTIL_EXTERN_C_END

#ifdef __cplusplus
// The same for an `argument` of type char*. A template, so that a null pointer means the function.
// Because of it, the address of UTIL_getopt needs the type:
//     int (*get)(int, const char* const*, const char*, int*, const char**) = &UTIL_getopt;
template <typename Char, std::enable_if_t<std::is_same_v<Char, char>, int> = 0>
int UTIL_getopt(int count, const char* const* args, const char* letters, int* index,
                Char** argument) {
    return UTIL_getopt(count, args, letters, index, const_cast<const char**>(argument));
}
#endif

#endif
