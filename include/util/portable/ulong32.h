// The interface's unsigned long: 32 bits, as it is on Windows.
#ifndef UTIL_PORTABLE_ULONG32_H
#define UTIL_PORTABLE_ULONG32_H

#include <cstdint>

namespace util {

// The platform's own type where that has 32 bits, so that declarations match its headers.
#ifdef _WIN32
using ulong32 = unsigned long;
#else
using ulong32 = std::uint32_t;
#endif

static_assert(sizeof(ulong32) == 4, "the interface's unsigned long has 32 bits");

}  // namespace util

#endif
