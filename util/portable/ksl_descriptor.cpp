#include "util/portable/ksl_descriptor.h"

#include <io.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "util/internal/encoding.h"

int ksl_close(int descriptor) {
    return descriptor == 0 ? 0 : _close(descriptor);
}

int ksl_write(int descriptor, const char* data, unsigned int count) {
    return _write(descriptor, data, count);
}

int ksl_read(int descriptor, void* buffer, unsigned int count) {
    return _read(descriptor, buffer, count);
}

long ksl_lseek(int descriptor, long offset, int origin) {
    return _lseek(descriptor, offset, origin);
}

int ksl_dup(int descriptor) {
    return _dup(descriptor);
}

int ksl_flush(...) {
    return 0;
}

int ksl_putenv(const char* assignment) {
    if (assignment && !util::fits_ansi_call(std::strlen(assignment))) {
        errno = EINVAL;
        return -1;
    }
    return _putenv(assignment);
}
