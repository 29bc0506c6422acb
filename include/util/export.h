/// @file
/// Macros for the declarations of util.dll.
///
/// Every public declaration has UTIL_API. Every function with an unmangled name is declared between
/// UTIL_EXTERN_C_BEGIN and UTIL_EXTERN_C_END. C can call such a function, unless `#ifdef
/// __cplusplus` surrounds it because its declaration contains a class. util/c.h includes all
/// headers with functions for C.
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

/// Exports a declaration from util.dll, or imports it.
#if !defined(_WIN32)
#define UTIL_API
#elif defined(UTIL_BUILDING)  // set by the build of util.dll alone
#define UTIL_API __declspec(dllexport)
#else
#define UTIL_API __declspec(dllimport)
#endif

/// Makes compilers that can do so check printf-style arguments. Both numbers count from 1, without
/// `this`.
#if defined(__GNUC__)
#define UTIL_PRINTF_FORMAT(format_index, first_argument) \
    __attribute__((format(printf, format_index, first_argument)))
#else
#define UTIL_PRINTF_FORMAT(format_index, first_argument)
#endif

// Clang warns about a function that returns a String, because C has no such type.
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
/// Begins the declarations of functions with unmangled names.
#define UTIL_EXTERN_C_BEGIN extern "C" {
/// Ends the declarations of functions with unmangled names.
#define UTIL_EXTERN_C_END }
#endif

/// The parameters of a function that ignores them. Before C23, C allows any parameters only without
/// a prototype.
#if defined(__cplusplus) || __STDC_VERSION__ >= 202311L
#define UTIL_ANY_ARGUMENTS ...
#else
#define UTIL_ANY_ARGUMENTS
#endif

#endif
