#include "util/files/delete_file.h"

#include <sys/stat.h>

#include "util/internal/guarded.h"
#include "util/portable/utf8_files.h"

int UTIL_delete(const char* path) {
    return util::guarded(-1, [&] { return UTF8_unlink(path); });
}

int UTIL_delete_readonly(const char* path) {
    return util::guarded(-1, [&] {
        const int result = UTF8_chmod(path, _S_IWRITE);
        return result != 0 ? result : UTF8_unlink(path);
    });
}
