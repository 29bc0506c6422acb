#include "util/files/lock_file.h"

#include <string>

#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/internal/path.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace {

// Returns the file, open and locked, or the invalid handle.
util::FileHandle try_to_lock(const std::wstring& path, OVERLAPPED& record) {
    util::FileHandle file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    record = {};
    if (file && !LockFileEx(file.get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &record)) file.reset();
    return file;
}

}  // namespace

bool UTIL_LockFilePrivate(String directory, void** handle, struct _OVERLAPPED* record) {
    constexpr int most_attempts = 5;
    constexpr DWORD pause_in_ms = 1000000;
    if (!handle) return false;
    *handle = INVALID_HANDLE_VALUE;
    if (!record) return false;
    return util::guarded(false, [&] {
        const std::string file = util::join_always(directory.view(), "lockfile.lck");
        const std::wstring path = util::wide_path(file.c_str());
        for (int attempt = 1;; ++attempt) {
            *handle = try_to_lock(path, *record).release();
            if (*handle != INVALID_HANDLE_VALUE) return true;
            if (attempt == most_attempts) return false;
            Sleep(pause_in_ms);
        }
    });
}

bool UTIL_UnLockFilePrivate(void* handle, struct _OVERLAPPED* record) {
    if (handle == INVALID_HANDLE_VALUE) return true;
    const bool unlocked = record && UnlockFileEx(handle, 0, 1, 0, record);
    const bool closed = CloseHandle(handle);
    return unlocked && closed;
}
