// A lock for state that the whole process shares.
#ifndef UTIL_INTERNAL_LOCK_H
#define UTIL_INTERNAL_LOCK_H

#ifdef _WIN32
#include "util/internal/windows.h"
#else
#include <mutex>
#endif

namespace util {

#ifdef _WIN32
// The runtime's std::mutex allocates at its first use and is never destroyed, so each load of the
// library would leave a block. This lock allocates nothing, cannot fail, and has nothing to
// destroy: destructors of other modules may take it while the library unloads.
class Lock {
  public:
    constexpr Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void lock() { AcquireSRWLockExclusive(&m_lock); }
    void unlock() { ReleaseSRWLockExclusive(&m_lock); }

  private:
    SRWLOCK m_lock = SRWLOCK_INIT;
};
#else
using Lock = std::mutex;
#endif

}  // namespace util

#endif
