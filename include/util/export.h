// How names leave util.dll. Every public declaration carries UTIL_API. Every function whose
// exported name is unmangled is declared between UTIL_EXTERN_C_BEGIN and UTIL_EXTERN_C_END. Such a
// function is for C as well, unless `#ifdef __cplusplus` surrounds it: that is for the ones with a
// class in their declaration. util/c.h includes all headers with functions for C.
#ifndef UTIL_EXPORT_H
#define UTIL_EXPORT_H

#ifndef __cplusplus
#include <stdbool.h>
#elif defined(_WIN32)
#include <cstddef>
#include <cstdint>
// A class of util.dll fits a program only with the same runtime. The package's CMake files show the
// same sentences.
#if __cplusplus < 201703L && !defined(_MSC_VER)
#error "util needs C++17 or later (-std=c++17)."
#endif
#if defined(_LIBCPP_VERSION)
#error "util needs libstdc++, and this program uses libc++ (leave out -stdlib=libc++)."
#endif
#if defined(__MINGW32__) && defined(_UCRT)
#error "util needs the C runtime msvcrt, and this program uses UCRT (on MSYS2, take MINGW64)."
#endif
#endif

// Marks what util.dll exports.
#if !defined(_WIN32)
#define UTIL_API
#elif defined(UTIL_BUILDING)  // set by the build of util.dll alone
#define UTIL_API __declspec(dllexport)
#else
#define UTIL_API __declspec(dllimport)
#endif

// Lets compilers that can do so check printf-style arguments; counted from 1, without "this".
#if defined(__GNUC__)
#define UTIL_PRINTF_FORMAT(format_index, first_argument) \
    __attribute__((format(printf, format_index, first_argument)))
#else
#define UTIL_PRINTF_FORMAT(format_index, first_argument)
#endif

// Some of these functions return a String. Clang would warn that C has no such type.
#if !defined(__cplusplus)
#define UTIL_EXTERN_C_BEGIN
#define UTIL_EXTERN_C_END
#elif defined(__clang__)
#define UTIL_EXTERN_C_BEGIN          \
    _Pragma("clang diagnostic push") \
        _Pragma("clang diagnostic ignored \"-Wreturn-type-c-linkage\"") extern "C" {
#define UTIL_EXTERN_C_END \
    }                     \
    _Pragma("clang diagnostic pop")
#else
#define UTIL_EXTERN_C_BEGIN extern "C" {
#define UTIL_EXTERN_C_END }
#endif

// The parameters of a function that ignores them. Before C23, C allows any only without a
// prototype.
#if defined(__cplusplus) || __STDC_VERSION__ >= 202311L
#define UTIL_ANY_ARGUMENTS ...
#else
#define UTIL_ANY_ARGUMENTS
#endif

#endif
