#include "util/portable/ksl_link.h"

#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <memory>
#include <new>
#include <string_view>

#include "util/internal/windows.h"
#include "util/portable/stat_path.h"

int ksl_lstat(const char* path, struct _stat64i32* record) {
    if (!path || !record) {
        errno = EINVAL;
        return -1;
    }
    std::string_view used(path);
    if (util::has_surplus_backslash(used)) used.remove_suffix(1);

    // UTF-16 never needs more units than UTF-8 has bytes.
    constexpr std::size_t usual = 1024;
    wchar_t usual_room[usual + 1];
    std::unique_ptr<wchar_t[]> long_room;
    wchar_t* wide = usual_room;
    if (used.size() > usual) {
        if (used.size() < INT_MAX) long_room.reset(new (std::nothrow) wchar_t[used.size() + 1]);
        if (!long_room) {
            errno = ENOMEM;
            return -1;
        }
        wide = long_room.get();
    }
    const int size = static_cast<int>(used.size());
    wide[MultiByteToWideChar(CP_UTF8, 0, used.data(), size, wide, size)] = L'\0';
    return util::stat_wide(wide, record);
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
