// How names leave util.dll. Every public declaration carries UTIL_API; every plain function whose
// exported name is unmangled stands inside UTIL_EXTERN_C_BEGIN / UTIL_EXTERN_C_END.
#ifndef UTIL_EXPORT_H
#define UTIL_EXPORT_H

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

// Some plain functions return a String; Clang would remark that C has no such type.
#if defined(__clang__)
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

#endif
