// The one error that text operations raise for a position beyond the end.
#ifndef UTIL_INTERNAL_POSITION_ERROR_H
#define UTIL_INTERNAL_POSITION_ERROR_H

#include <cstdint>
#include <stdexcept>

namespace util {

// Programs rely on the message. The standard library's own message differs between vendors.
inline void require_position(std::uint64_t pos, std::uint64_t size) {
    if (pos > size) throw std::out_of_range("invalid string position");
}

}  // namespace util

#endif
