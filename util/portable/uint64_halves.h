// The parts of ksl_uint64_c that its sources share: the status word and the number as a whole.
#ifndef UTIL_PORTABLE_UINT64_HALVES_H
#define UTIL_PORTABLE_UINT64_HALVES_H

#include <atomic>
#include <cstdint>
#include <cstring>

#include "util/portable/ksl_uint64.h"

namespace util {

enum Uint64Status { no_error = 0, too_many_digits = 1, bad_after_prefix = 2, bad_character = 4 };

// Atomic: many operations reset it, so threads that never read it would race.
inline std::atomic<int> uint64_status{no_error};

inline void set_status(Uint64Status status) {
    uint64_status.store(status, std::memory_order_relaxed);
}

inline std::uint64_t halves_swapped(std::uint64_t v) {
    return v << 32 | v >> 32;
}

// Returns the number. An object is the number with its halves swapped, so this is one load and one
// rotation.
inline std::uint64_t joined(const ksl_uint64_c& v) {
    std::uint64_t stored;
    std::memcpy(&stored, &v, sizeof stored);
    return halves_swapped(stored);
}

// The reverse of joined. Leaves the status unchanged.
inline ksl_uint64_c split(std::uint64_t v) {
    ksl_uint64_c halves;
    v = halves_swapped(v);
    std::memcpy(static_cast<void*>(&halves), &v, sizeof v);
    return halves;
}

}  // namespace util

#endif
