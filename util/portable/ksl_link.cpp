#include "util/portable/ksl_link.h"

#include <sys/stat.h>

#include <cerrno>
#include <string_view>

#include "util/internal/encoding.h"
#include "util/portable/stat_path.h"

int ksl_lstat(const char* path, struct _stat64i32* record) {
    if (record) *record = {};
    if (!path || !record) {
        errno = EINVAL;
        return -1;
    }
    std::string_view used(path);
    if (util::has_surplus_backslash(used)) used.remove_suffix(1);
    util::WideText wide;
    const util::Conversion result = util::utf8_to_wide(used.data(), used.size(), wide);
    if (result == util::Conversion::done) return util::stat_wide(wide.c_str(), record);
    errno = result == util::Conversion::no_memory ? ENOMEM : EINVAL;
    return -1;
}

int ksl_stat(const char* path, struct _stat64i32* record) {
    return ksl_lstat(path, record);
}

int ksl_readlink(...) {
    return -1;
}
int ksl_read_link_chain(...) {
    return -1;
}
