#include "util/files/seekable.h"

#include "util/internal/windows.h"
// after the platform's header
#include <fcntl.h>
#include <io.h>

#include "util/internal/kept_errors.h"
#include "util/internal/scoped_handle.h"

namespace util {

std::atomic<bool> held_twice[most_descriptors];

namespace {

// The runtime tells a descriptor's mode only by setting another one. The duplicate keeps the
// descriptor itself unchanged.
bool is_binary(int fd) {
    const ScopedDescriptor duplicate(_dup(fd));
    return duplicate && _setmode(duplicate.get(), _O_BINARY) == _O_BINARY;
}

}  // namespace

bool is_disk_file(int fd) {
    return GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(fd))) == FILE_TYPE_DISK;
}

bool is_untranslated_disk_file(int fd) {
    const KeptErrors kept;
    return is_disk_file(fd) && is_binary(fd);
}

}  // namespace util
