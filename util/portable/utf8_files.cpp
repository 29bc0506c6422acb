#include "util/portable/utf8_files.h"

#include "util/internal/windows.h"
// after the platform's header
#include <comutil.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include "util/portable/stat_path.h"
#include "util/portable/utf8.h"

static_assert(sizeof(std::uint64_t) == sizeof(ULARGE_INTEGER));

namespace {

int invalid() {
    errno = EINVAL;
    return -1;
}

// The found name in UTF-8 into the caller's buffer.
bool copy_name(const WIN32_FIND_DATAW& data, char* name) {
    if (!name) return true;
    String utf8;
    if (!UTIL_WideCharToUtf8(data.cFileName, &utf8)) return false;
    std::memcpy(name, utf8.c_str(), utf8.size() + 1);
    return true;
}

}  // namespace

int UTF8_open(const char* path, int flags, int mode) {
    _bstr_t wide;
    if (!UTIL_Utf8ToWideChar(path, &wide)) return invalid();
    return _wopen(wide, flags, mode);
}

int UTF8_unlink(const char* path) {
    _bstr_t wide;
    return UTIL_Utf8ToWideChar(path, &wide) ? _wunlink(wide) : -1;
}

int UTF8_chdir(const char* path) {
    _bstr_t wide;
    return UTIL_Utf8ToWideChar(path, &wide) ? _wchdir(wide) : -1;
}

int UTF8_chmod(const char* path, int mode) {
    _bstr_t wide;
    return UTIL_Utf8ToWideChar(path, &wide) ? _wchmod(wide, mode) : -1;
}

int UTF8_access(const char* path, int mode) {
    _bstr_t wide;
    if (!UTIL_Utf8ToWideChar(path, &wide)) return invalid();
    return _waccess(wide, mode);
}

int UTF8_mkdir(const char* path) {
    _bstr_t wide;
    if (!UTIL_Utf8ToWideChar(path, &wide) || !CreateDirectoryW(wide, nullptr)) return invalid();
    return 0;
}

int UTF8_rmdir(const char* path) {
    _bstr_t wide;
    if (!UTIL_Utf8ToWideChar(path, &wide) || !RemoveDirectoryW(wide)) return invalid();
    return 0;
}

int UTF8_lstat(const char* path, struct _stat64i32* record) {
    if (!path || !record) return invalid();
    _bstr_t wide;
    try {
        std::string changed;
        const std::string_view given(path);
        if (!given.empty() && given.back() == ':') {
            changed.append(given).append("\\");
        } else if (util::has_surplus_backslash(given)) {
            changed.append(given.substr(0, given.size() - 1));
        }
        if (!UTIL_Utf8ToWideChar(changed.empty() ? path : changed.c_str(), &wide)) return -1;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return -1;
    }
    return _wstat64i32(wide, record);
}

int UTF8_stat(const char* path, struct _stat64i32* record) {
    return UTF8_lstat(path, record);
}

void* UTF8_FindFirstFile(const char* path, struct _WIN32_FIND_DATAW* data, char* name) {
    _bstr_t wide;
    if (!UTIL_Utf8ToWideChar(path, &wide)) {
        SetLastError(ERROR_INVALID_NAME);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE search = FindFirstFileW(wide, data);
    if (search != INVALID_HANDLE_VALUE && !copy_name(*data, name)) {
        FindClose(search);
        SetLastError(ERROR_INVALID_NAME);
        return INVALID_HANDLE_VALUE;
    }
    return search;
}

int UTF8_FindNextFile(void* handle, struct _WIN32_FIND_DATAW* data, char* name) {
    if (!FindNextFileW(handle, data)) return 0;
    if (copy_name(*data, name)) return 1;
    SetLastError(ERROR_INVALID_NAME);
    return 0;
}

int UTF8_GetDiskFreeSpaceEx(const char* path, std::uint64_t* available, std::uint64_t* total,
                            std::uint64_t* free) {
    _bstr_t wide;
    if (!UTIL_Utf8ToWideChar(path, &wide)) return 0;
    return GetDiskFreeSpaceExW(wide, reinterpret_cast<ULARGE_INTEGER*>(available),
                               reinterpret_cast<ULARGE_INTEGER*>(total),
                               reinterpret_cast<ULARGE_INTEGER*>(free));
}

int UTF8_CopyFile(const char* source, const char* destination, int failIfExists) {
    _bstr_t from;
    _bstr_t to;
    if (!UTIL_Utf8ToWideChar(source, &from) || !UTIL_Utf8ToWideChar(destination, &to)) return 0;
    return CopyFileW(from, to, failIfExists);
}
