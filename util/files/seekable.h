// Whether a descriptor may be read ahead: whether the reader can seek back unnoticed.
#ifndef UTIL_FILES_SEEKABLE_H
#define UTIL_FILES_SEEKABLE_H

#include <atomic>

namespace util {

// Any thread may call these functions. They raise nothing.

bool is_disk_file(int fd);

// Returns whether the descriptor is a disk file that the runtime does not translate. Keeps errno
// and the last error.
bool is_untranslated_disk_file(int fd);

// The descriptor numbers that two objects have held at once, because one is a copy of the other.
// Either of them may close the number. The runtime then gives it to the next file or pipe that
// anybody opens. What the other object, or any later owner of the number, found out at its open may
// then be wrong. A number stays marked: the other object may also close it while it belongs to a
// stranger, who closes it once more at any later time.
constexpr unsigned most_descriptors = 2048;  // the runtime's limit
extern std::atomic<bool> held_twice[most_descriptors];

inline void note_second_holder(int fd) {
    const auto number = static_cast<unsigned>(fd);
    if (number < most_descriptors) held_twice[number].store(true, std::memory_order_relaxed);
}

// `was_seekable` is the answer at the open. It still holds unless someone else may have closed the
// number. Asking each time would double the time of reading a line.
inline bool may_read_ahead(int fd, bool was_seekable) {
    if (!was_seekable) return false;
    const auto number = static_cast<unsigned>(fd);
    const bool is_shared =
        number >= most_descriptors || held_twice[number].load(std::memory_order_relaxed);
    return !is_shared || is_untranslated_disk_file(fd);
}

}  // namespace util

#endif
