// Not installed. Work that no caller can notice.
#ifndef UTIL_INTERNAL_KEPT_ERRORS_H
#define UTIL_INTERNAL_KEPT_ERRORS_H

#include <cerrno>

#ifdef _WIN32
#include "util/internal/windows.h"
#endif

namespace util {

// Puts errno and the last-error code back at the end of its scope, so that closing and freeing
// never replace what the call before has left for the caller.
class KeptErrors {
  public:
#ifdef _WIN32
    KeptErrors() : m_errno(errno), m_last_error(GetLastError()) {}
    ~KeptErrors() {
        errno = m_errno;
        SetLastError(m_last_error);
    }
#else
    KeptErrors() : m_errno(errno) {}
    ~KeptErrors() {
        errno = m_errno;
    }
#endif
    KeptErrors(const KeptErrors&) = delete;
    KeptErrors& operator=(const KeptErrors&) = delete;

  private:
    const int m_errno;
#ifdef _WIN32
    const DWORD m_last_error;
#endif
};

}  // namespace util

#endif
