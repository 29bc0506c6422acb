#include "util/host/temp_directory.h"

#include <new>
#include <string>

#include "util/internal/encoding.h"
#include "util/internal/windows.h"
#include "util/portable/environment.h"

namespace {

// A path that the page cannot hold is a missing one.
bool is_directory(const std::string& path) {
    std::string ansi_path;
    if (!util::utf8_to_ansi(path.c_str(), ansi_path, util::Page::files)) return false;
    const DWORD attributes = GetFileAttributesA(ansi_path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::string temp_path() {
    constexpr DWORD room = 260;
    char named[room] = {};  // stays empty when the path is longer
    wchar_t twin[room] = {};
    const DWORD length = GetTempPathA(room, named);
    GetTempPathW(room, twin);
    std::string utf8;
    if (length >= 1 && length <= room && util::ansi_to_utf8(named, twin, utf8, util::Page::files) &&
        is_directory(utf8)) {
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
