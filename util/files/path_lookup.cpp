#include "util/files/path_lookup.h"

#include "util/internal/windows.h"
// after the platform's header
#include <sys/stat.h>

#include <string>
#include <string_view>
#include <vector>

#include "util/internal/encoding.h"
#include "util/internal/path.h"
#include "util/internal/position_error.h"
#include "util/portable/current_directory.h"
#include "util/portable/environment.h"
#include "util/portable/utf8_files.h"

namespace {

String if_exists(const String& path) {
    return Tools::fileExists(path) ? path : String();
}

// Rewrites `search_list` after a hit, unless it is null.
String search(const String& name, const std::vector<String>& directories, String* search_list) {
    for (std::size_t i = 0; i < directories.size(); ++i) {
        const String& directory = directories[i];  // never empty: the split drops those
        if (directory.view().front() == '%') continue;
        String candidate = util::join_unless_separated(directory.view(), name.view());
        if (!Tools::fileExists(candidate)) continue;
        if (search_list) {
            String rest;
            for (std::size_t k = i + 1; k < directories.size(); ++k)
                rest += ";" + directory;
            *search_list = rest;
        }
        return candidate;
    }
    return String();
}

String resolve(const String& path) {
    std::vector<String> parts = path.split("\\", true);
    if (parts.size() < 2) parts = path.split("/", true);
    std::string result = UTIL_CurrentDirectory().str();
    for (const String& part : parts) {
        if (part != "..") {
            result = util::join_always(result, part.c_str());
        } else {
            result = util::before_last_backslash(result);
        }
    }
    return if_exists(result);
}

String look_up(const String& path, String* search_list) {
    util::require_position(2, path.size());
    if (path.view()[1] == ':') return if_exists(path);
    if (path.view().find("..") != std::string_view::npos) return resolve(path);
    const bool own_list = search_list && !search_list->empty();
    const String list = own_list ? *search_list : util::environment_value(L"PATH");
    return search(path, list.split(";", true), search_list);
}

}  // namespace

bool Tools::fileExists(const char* path) {
    struct _stat64i32 record;
    return UTF8_stat(path, &record) == 0;
}

String Tools::find_location(const String&, FileAttr) {
    constexpr DWORD room = 260;
    char module[room + 1] = {};  // a name that is cut may lack its NUL
    wchar_t twin[room + 1] = {};
    GetModuleFileNameA(nullptr, module, room);
    GetModuleFileNameW(nullptr, twin, room);
    std::string utf8;
    if (!util::ansi_to_utf8(module, twin, utf8, util::Page::files)) return String();
    return std::string(util::up_to_last_backslash(utf8));
}

String Tools::absolute_pathname(const String& path, FileAttr) {
    return look_up(path, nullptr);
}

String Tools::absolute_pathname(const String& path, String& search_list, FileAttr) {
    return look_up(path, &search_list);
}
