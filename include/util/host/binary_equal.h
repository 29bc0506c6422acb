// Comparing bytes.
#ifndef UTIL_HOST_BINARY_EQUAL_H
#define UTIL_HOST_BINARY_EQUAL_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Whether the first count bytes of a and b are the same. Reads no byte behind the first difference,
// and none at all, with the answer true, when count is below 1. A null pointer equals nothing. Any
// thread may call it.
//     UTIL_IsBinaryEqual("abc", "abd", 2)   // true
UTIL_API bool UTIL_IsBinaryEqual(const void* a, const void* b, int count);

UTIL_EXTERN_C_END

#endif
