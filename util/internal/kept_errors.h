// Preserves errno and the last error across clean-up.
#ifndef UTIL_INTERNAL_KEPT_ERRORS_H
#define UTIL_INTERNAL_KEPT_ERRORS_H

#include <cerrno>

#ifdef _WIN32
#include "util/internal/windows.h"
#endif

namespace util {

// Restores the last-error code at the end of its scope.
class KeptLastError {
  public:
#ifdef _WIN32
    KeptLastError() : m_last_error(GetLastError()) {}
    ~KeptLastError() {
        SetLastError(m_last_error);
    }
#else
    KeptLastError() {}  // not defaulted: compilers would warn of an unused object
#endif
    KeptLastError(const KeptLastError&) = delete;
    KeptLastError& operator=(const KeptLastError&) = delete;

#ifdef _WIN32
  private:
    const DWORD m_last_error;
#endif
};

// Restores errno as well. So closing and freeing do not change the codes that the caller is to see.
class KeptErrors {
  public:
    KeptErrors() : m_errno(errno) {}
    ~KeptErrors() { errno = m_errno; }

  private:
    const KeptLastError m_last_error;
    const int m_errno;
};

}  // namespace util

#endif
