#include "util/files/open_descriptor.h"

#include "util/internal/windows.h"
// after the platform's header
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "util/portable/utf8_files.h"

namespace util {

OpenResult open_descriptor(const char* name, int flags) {
    constexpr int most_attempts = 7;
    constexpr int owner_access = _S_IREAD | _S_IWRITE;
    for (int attempt = 1;; ++attempt) {
        SetLastError(0);
        const int descriptor = UTF8_open(name, flags, (flags & _O_CREAT) ? owner_access : 0);
        if (descriptor != -1) return {descriptor, 0};
        auto code = static_cast<int>(GetLastError());
        if (code == 0) code = errno;  // the runtime failed without a call of the platform
        if (code != ERROR_TOO_MANY_OPEN_FILES || attempt == most_attempts) return {-1, code};
    }
}

}  // namespace util
