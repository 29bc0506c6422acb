#include "util/files/create_directory.h"

#include "util/internal/windows.h"
// after the platform's header
#include <shlobj.h>

#include <string>

#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/internal/scoped_handle.h"

unsigned long UTIL_makeNewNTDir(const String& path, bool* created) {
    constexpr DWORD no_sharing = 0;
    const auto out_of_memory = [] {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return DWORD{ERROR_NOT_ENOUGH_MEMORY};
    };
    return util::guarded(out_of_memory, [&]() -> DWORD {
        const std::wstring wide = util::wide_path(path);
        const util::FileHandle existing(CreateFileW(wide.c_str(), GENERIC_READ, no_sharing, nullptr,
                                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                                                    nullptr));
        if (existing) return ERROR_ALREADY_EXISTS;
        if (GetLastError() == ERROR_SHARING_VIOLATION) return 0;
        if (!CreateDirectoryW(wide.c_str(), nullptr)) return GetLastError();
        if (created) *created = true;
        return 0;
    });
}

int UTIL_CreateDirectory(const char* path) {
    return util::guarded(-1, [&] {
        std::string ansi;
        if (!util::utf8_to_ansi(path, ansi)) return -1;
        return SHCreateDirectoryExA(nullptr, ansi.c_str(), nullptr) == ERROR_SUCCESS ? 0 : -1;
    });
}
