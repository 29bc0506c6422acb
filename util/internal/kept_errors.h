// Work that no caller can notice.
#ifndef UTIL_INTERNAL_KEPT_ERRORS_H
#define UTIL_INTERNAL_KEPT_ERRORS_H

#include <cerrno>

#ifdef _WIN32
#include "util/internal/windows.h"
#endif

namespace util {

// Puts the last-error code back at the end of its scope.
class KeptLastError {
  public:
#ifdef _WIN32
    KeptLastError() : m_last_error(GetLastError()) {}
    ~KeptLastError() {
        SetLastError(m_last_error);
    }
#else
    KeptLastError() {}  // not defaulted, lest an object be taken for unused
#endif
    KeptLastError(const KeptLastError&) = delete;
    KeptLastError& operator=(const KeptLastError&) = delete;

#ifdef _WIN32
  private:
    const DWORD m_last_error;
#endif
};

// Puts errno back, too, so that closing and freeing never replace what the call before has left for
// the caller.
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
