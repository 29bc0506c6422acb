// Moves bytes through a descriptor with the retry rule of XrFile.
#ifndef UTIL_FILES_TRANSFER_H
#define UTIL_FILES_TRANSFER_H

#include <cerrno>
#include <cstdint>

#include "util/internal/windows.h"

namespace util {

// What XrFile records for a failure that the platform did not see.
constexpr int own_failure = -1;

// GetLastError() in the type of XrFile's codes.
inline int last_error() {
    return static_cast<int>(GetLastError());
}

// The outcome of a transfer.
struct Transfer {
    bool done;            // every byte was moved, or fewer without an error (end of file)
    int code;             // the code to record if not done
    std::uint64_t moved;  // bytes moved, also on failure
    bool at_end = false;  // not done because the last call moved nothing
};

// Calls `move(at, count)` until `count` bytes are moved or a result ends the transfer. The rules
// for a result apply in this order, so a transfer of 0 bytes always fails:
//   0                      fails with the last error
//   all remaining bytes    succeeds
//   errno 4 (interrupted)  continues after the bytes moved, at most five times; -1 moved none
//   any other errno        fails with errno
//   -1                     fails with the last error
//   fewer bytes            succeeds
template <typename Byte, typename Move>
Transfer transfer(Move move, Byte* at, std::uint64_t count) {
    constexpr int most_continuations = 5;
    std::uint64_t moved = 0;
    for (int continued = 0;; ++continued) {
        errno = 0;  // a value from an earlier call must not decide
        const int result = move(at + moved, static_cast<unsigned int>(count - moved));
        if (result == 0) return {false, last_error(), moved, true};
        if (result > 0) {
            moved += static_cast<unsigned int>(result);
            if (moved == count) return {true, 0, moved};
        }
        if (errno == EINTR && continued < most_continuations) continue;
        if (errno != 0) return {false, errno, moved};
        if (result < 0) return {false, last_error(), moved};
        return {true, 0, moved};
    }
}

}  // namespace util

#endif
