#include "util/portable/utf8_files.h"

#include "util/internal/windows.h"
// after the platform's header
#include <comutil.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/internal/kept_errors.h"
#include "util/internal/scoped_handle.h"
#include "util/portable/stat_path.h"
#include "util/portable/utf8.h"

static_assert(sizeof(std::uint64_t) == sizeof(ULARGE_INTEGER));

namespace {

// A path for the platform's wide calls. A failed conversion leaves errno unchanged. Freeing the
// text leaves errno and the last error unchanged.
class WidePath {
  public:
    explicit WidePath(const char* utf8) {
        const int kept = errno;
        m_valid = UTIL_Utf8ToWideChar(utf8, &m_text);
        errno = kept;
    }
    ~WidePath() {
        const util::KeptErrors kept;
        m_text = _bstr_t();
    }
    WidePath(const WidePath&) = delete;
    WidePath& operator=(const WidePath&) = delete;

    explicit operator bool() const { return m_valid; }
    operator const wchar_t*() const { return m_text; }

  private:
    _bstr_t m_text;
    bool m_valid;
};

int invalid() {
    errno = EINVAL;
    return -1;
}

void* no_search() {
    SetLastError(ERROR_INVALID_NAME);
    return INVALID_HANDLE_VALUE;
}

// Copies the found name in UTF-8 to `name`, unless that is null.
bool copy_name(const WIN32_FIND_DATAW& data, char* name) {
    return !name || util::name_to_utf8(data.cFileName, name);
}

}  // namespace

int UTF8_open(const char* path, int flags, int mode) {
    const WidePath wide(path);
    return wide ? _wopen(wide, flags, mode) : invalid();
}

int UTF8_unlink(const char* path) {
    const WidePath wide(path);
    return wide ? _wunlink(wide) : -1;
}

int UTF8_chdir(const char* path) {
    const WidePath wide(path);
    return wide ? _wchdir(wide) : -1;
}

int UTF8_chmod(const char* path, int mode) {
    const WidePath wide(path);
    return wide ? _wchmod(wide, mode) : -1;
}

int UTF8_access(const char* path, int mode) {
    const WidePath wide(path);
    return wide ? _waccess(wide, mode) : invalid();
}

int UTF8_mkdir(const char* path) {
    const WidePath wide(path);
    return wide && CreateDirectoryW(wide, nullptr) ? 0 : invalid();
}

int UTF8_rmdir(const char* path) {
    const WidePath wide(path);
    return wide && RemoveDirectoryW(wide) ? 0 : invalid();
}

int UTF8_lstat(const char* path, struct _stat64i32* record) {
    if (record) *record = {};
    if (!path || !record) return invalid();
    std::string changed;
    const auto out_of_memory = [] {
        errno = ENOMEM;
        return false;
    };
    const auto change = [&] {
        const std::string_view given(path);
        if (!given.empty() && given.back() == ':') {
            changed.append(given).append("\\");
        } else if (util::has_surplus_backslash(given)) {
            changed.append(given.substr(0, given.size() - 1));
        }
        return true;
    };
    if (!util::guarded(out_of_memory, change)) return -1;
    const WidePath wide(changed.empty() ? path : changed.c_str());
    return wide ? util::stat_wide(wide, record) : -1;
}

int UTF8_stat(const char* path, struct _stat64i32* record) {
    return UTF8_lstat(path, record);
}

void* UTF8_FindFirstFile(const char* path, struct _WIN32_FIND_DATAW* data, char* name) {
    const WidePath wide(path);
    if (!wide || !data) return no_search();
    util::ScopedSearch search(FindFirstFileW(wide, data));
    if (search && !copy_name(*data, name)) return no_search();
    return search.release();
}

int UTF8_FindNextFile(void* handle, struct _WIN32_FIND_DATAW* data, char* name) {
    if (data) {
        if (!FindNextFileW(handle, data)) return 0;
        if (copy_name(*data, name)) return 1;
    }
    SetLastError(ERROR_INVALID_NAME);
    return 0;
}

int UTF8_GetDiskFreeSpaceEx(const char* path, std::uint64_t* available, std::uint64_t* total,
                            std::uint64_t* free) {
    const WidePath wide(path);
    if (!wide) return 0;
    return GetDiskFreeSpaceExW(wide, reinterpret_cast<ULARGE_INTEGER*>(available),
                               reinterpret_cast<ULARGE_INTEGER*>(total),
                               reinterpret_cast<ULARGE_INTEGER*>(free));
}

int UTF8_CopyFile(const char* source, const char* destination, int failIfExists) {
    const WidePath from(source);
    const WidePath to(destination);
    return from && to ? CopyFileW(from, to, failIfExists) : 0;
}
