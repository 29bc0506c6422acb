// Not installed. Moving bytes through a descriptor with the retry rule of XrFile.
#ifndef UTIL_FILES_TRANSFER_H
#define UTIL_FILES_TRANSFER_H

#include <cerrno>
#include <cstdint>

#include "util/internal/windows.h"

namespace util {

// What a transfer came to. A short one at the end of the file is done, too.
struct Transfer {
    bool done;
    int code;             // to be recorded when not done
    std::uint64_t moved;  // bytes, also when not done
    bool at_end = false;  // not done because the last call moved nothing
};

// Calls move(at, count) until count bytes went or a rule ends it.
template <typename Byte, typename Move>
Transfer transfer(Move move, Byte* at, std::uint64_t count) {
    constexpr int most_continuations = 5;
    std::uint64_t moved = 0;
    for (int continued = 0;; ++continued) {
        errno = 0;  // a stale value must decide nothing
        const int result = move(at + moved, static_cast<unsigned int>(count - moved));
        if (result == 0) return {false, static_cast<int>(GetLastError()), moved, true};
        if (result > 0) moved += static_cast<unsigned int>(result);
        if (moved == count) return {true, 0, moved};
        if (errno == EINTR && continued < most_continuations) continue;
        if (errno != 0) return {false, errno, moved};
        if (result < 0) return {false, static_cast<int>(GetLastError()), moved};
        return {true, 0, moved};
    }
}

}  // namespace util

#endif
