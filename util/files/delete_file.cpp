#include "util/files/delete_file.h"

#include <sys/stat.h>

#include "util/portable/utf8_files.h"

int UTIL_delete(const char* path) {
    try {
        return UTF8_unlink(path);
    } catch (...) {
        return -1;
    }
}

int UTIL_delete_readonly(const char* path) {
    try {
        const int result = UTF8_chmod(path, _S_IWRITE);
        return result != 0 ? result : UTF8_unlink(path);
    } catch (...) {
        return -1;
    }
}
