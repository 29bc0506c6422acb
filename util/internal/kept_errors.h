// Not installed. Clean-up that no caller can notice.
#ifndef UTIL_INTERNAL_KEPT_ERRORS_H
#define UTIL_INTERNAL_KEPT_ERRORS_H

#include <cerrno>

#include "util/internal/windows.h"

namespace util {

// Puts errno and the last-error code back at the end of its scope, so that closing and freeing
// never replace what the call before has left for the caller.
class KeptErrors {
  public:
    KeptErrors() : m_errno(errno), m_last_error(GetLastError()) {}
    ~KeptErrors() {
        errno = m_errno;
        SetLastError(m_last_error);
    }
    KeptErrors(const KeptErrors&) = delete;
    KeptErrors& operator=(const KeptErrors&) = delete;

  private:
    int m_errno;
    DWORD m_last_error;
};

}  // namespace util

#endif
