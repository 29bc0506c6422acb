/// @file
/// `util::ulong32`: the interface's unsigned long. It has 32 bits, as on Windows.
#ifndef UTIL_PORTABLE_ULONG32_H
#define UTIL_PORTABLE_ULONG32_H

#include <cstdint>

namespace util {

/// An unsigned integer of 32 bits. On Windows it is `unsigned long`, so that declarations match the
/// platform's headers.
#ifdef _WIN32
using ulong32 = unsigned long;
#else
using ulong32 = std::uint32_t;
#endif

static_assert(sizeof(ulong32) == 4, "the interface's unsigned long has 32 bits");

}  // namespace util

#endif
