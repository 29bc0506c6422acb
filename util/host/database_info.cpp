#include "util/host/database_info.h"

#include <string_view>
#include <utility>

#include "util/internal/clear_at_end.h"
#include "util/internal/registry.h"
#include "util/portable/utf8.h"

namespace {

constexpr DWORD value_room = 261;

// "\\HOST\SHARE" and anything behind it.
bool is_network_path(std::string_view path) {
    if (path.substr(0, 2) != "\\\\") return false;
    path.remove_prefix(2);
    const std::size_t host = path.find('\\');
    if (host == 0 || host == std::string_view::npos) return false;
    path.remove_prefix(host + 1);
    return !path.empty() && path.front() != '\\';
}

}  // namespace

bool UTIL_getTSSEDBInfoFromRegistry(String key, String& dbPath, String& user,
                                    String& password) try {
    util::ScopedKey opened = util::create_machine_key(key, KEY_ALL_ACCESS);
    if (!opened) return false;

    // Room for an odd last byte and a NUL behind the 261 bytes.
    wchar_t wide_path[value_room / sizeof(wchar_t) + 2] = {};
    DWORD length = value_room;
    if (RegQueryValueExW(opened.get(), L"Database Path", nullptr, nullptr,
                         reinterpret_cast<BYTE*>(wide_path), &length) != ERROR_SUCCESS) {
        return false;
    }
    if (!UTIL_WideCharToUtf8(wide_path, &dbPath)) {
        opened.release();  // stays open, as the header says
        return false;
    }
    if (!is_network_path(dbPath.view())) return true;

    std::string found_user;
    std::string found_password;
    const util::ClearAtEnd clear(found_password);
    const DWORD user_room = length;  // what the path's query has left there
    if (util::read_any_type(opened, "DatabaseUsername", user_room, found_user) != ERROR_SUCCESS ||
        util::read_any_type(opened, "DatabasePassword", value_room, found_password) !=
            ERROR_SUCCESS ||
        found_user.empty() || found_password.empty()) {
        return false;
    }
    // A short text goes to the heap, from where it is moved without copies on the stack.
    if (found_password.capacity() == std::string().capacity()) found_password.reserve(value_room);
    // Both exist before either is handed over.
    String user_text(std::move(found_user));
    String password_text(std::move(found_password));
    user = std::move(user_text);
    password = std::move(password_text);
    return true;
} catch (...) {
    return false;
}
