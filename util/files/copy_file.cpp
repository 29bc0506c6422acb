#include "util/files/copy_file.h"

#include "util/internal/windows.h"
// after the platform's header
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "util/files/open_descriptor.h"
#include "util/files/transfer.h"
#include "util/internal/guarded.h"
#include "util/internal/scoped_handle.h"
#include "util/portable/ksl_descriptor.h"
#include "util/portable/utf8_files.h"

namespace {

bool copy_bytes(int from, int to, std::int64_t count) {
    constexpr std::int64_t chunk = 262144;
    if (count < 0) return false;
    const std::unique_ptr<char[]> buffer(new char[std::min(count, chunk)]);
    while (count > 0) {
        const auto read =
            util::transfer([from](char* at, unsigned n) { return ksl_read(from, at, n); },
                           buffer.get(), std::min(count, chunk));
        if (!read.done) return false;  // the source may have become shorter
        const auto written =
            util::transfer([to](const char* at, unsigned n) { return ksl_write(to, at, n); },
                           buffer.get(), read.moved);
        if (!written.done || written.moved != read.moved) return false;
        count -= static_cast<std::int64_t>(read.moved);
    }
    return true;
}

// By design, descriptor 0 stays open, as for XrFile.
struct CopyTraits : util::DescriptorTraits {
    static void close(int descriptor) { ksl_close(descriptor); }
};
using Descriptor = util::ScopedHandle<CopyTraits>;

}  // namespace

int UTIL_copy(const char* source, const char* destination, char keepMode) {
    // Child processes that other threads start during the copy must not get the descriptors.
    constexpr int internal = _O_BINARY | _O_NOINHERIT;
    constexpr int reading = _O_RDONLY | internal;
    constexpr int overwriting = _O_WRONLY | _O_CREAT | _O_TRUNC | internal;
    return util::guarded(-1, [&] {
        const Descriptor from(util::open_descriptor(source, reading).descriptor);
        const Descriptor to(util::open_descriptor(destination, overwriting).descriptor);
        struct _stat64i32 status;  // its size has only 32 bits
        if (!from || !to || UTF8_stat(source, &status) != 0 ||
            !copy_bytes(from.get(), to.get(), _filelengthi64(from.get()))) {
            return -1;
        }
        if (keepMode == 1) UTF8_chmod(destination, status.st_mode);
        return 0;
    });
}
