#include "util/host/temp_directory.h"

#include <new>
#include <string>

#include "util/internal/ansi_text.h"
#include "util/internal/windows.h"
#include "util/portable/environment.h"

namespace {

bool is_directory(const char* ansi_path) {
    const DWORD attributes = GetFileAttributesA(ansi_path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::string temp_path() {
    constexpr DWORD room = 260;
    char named[room] = {};  // stays empty when the path is longer
    const DWORD length = GetTempPathA(room, named);
    std::string utf8;
    if (length >= 1 && length <= room && is_directory(named) && util::ansi_to_utf8(named, utf8)) {
        return utf8;
    }
    const String system_root = util::environment_value(L"SystemRoot");
    return system_root.empty() ? "." : system_root.str();
}

}  // namespace

String UTIL_GetTempDirectory() {
    try {
        std::string path = temp_path();
        if (!path.empty() && path.back() == '\\') path.pop_back();
        return String(std::move(path));
    } catch (const std::bad_alloc&) {
        return String();
    }
}
