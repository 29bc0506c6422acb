#include "util/host/registry.h"

#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include "util/internal/clear_at_end.h"
#include "util/internal/guarded.h"
#include "util/internal/registry.h"
#include "util/portable/utf8.h"

namespace {

constexpr DWORD database_room = 261;

// Whether the path is "\\HOST\SHARE", with or without more after it.
bool is_network_path(std::string_view path) {
    if (path.substr(0, 2) != "\\\\") return false;
    path.remove_prefix(2);
    const std::size_t host = path.find('\\');
    if (host == 0 || host == std::string_view::npos) return false;
    path.remove_prefix(host + 1);
    return !path.empty() && path.front() != '\\';
}

// Reads both credentials, or changes neither output. The user name may take `user_room` bytes.
bool read_credentials(const util::ScopedKey& key, DWORD user_room, String& user, String& password) {
    std::string found_user;
    std::string found_password;
    const util::ClearAtEnd clear(found_password);
    if (util::read_any_type(key, "DatabaseUsername", user_room, found_user) != ERROR_SUCCESS ||
        util::read_any_type(key, "DatabasePassword", database_room, found_password) !=
            ERROR_SUCCESS ||
        found_user.empty() || found_password.empty()) {
        return false;
    }
    // Moves a short text to the heap. A move from there leaves no copy on the stack.
    if (found_password.capacity() == std::string().capacity())
        found_password.reserve(database_room);
    // Both must exist before the first output changes.
    String user_text(std::move(found_user));
    String password_text(std::move(found_password));
    user = std::move(user_text);
    password = std::move(password_text);
    return true;
}

}  // namespace

int UTIL_GetRegistryValue(String const& key, String const& name, String& out) {
    return util::guarded(-1, [&] {
        const util::ScopedKey opened = util::open_machine_key(key, KEY_READ);
        if (!opened) return -1;
        constexpr DWORD room = 1024;
        auto* const buffer = static_cast<char*>(std::malloc(room));  // stays, as the header says
        std::string text;
        if (!buffer ||
            !util::read_text(opened, name, util::EmptyText::accepted, buffer, room, text)) {
            return -1;
        }
        out = String(std::move(text));
        return 0;
    });
}

bool UTIL_getTSSEDBInfoFromRegistry(String key, String& dbPath, String& user, String& password) {
    return util::guarded(false, [&] {
        util::ScopedKey opened = util::create_machine_key(key, KEY_ALL_ACCESS);
        if (!opened) return false;

        // Room for an odd last byte and a NUL after the 261 bytes.
        wchar_t wide_path[database_room / sizeof(wchar_t) + 2] = {};
        DWORD length = database_room;
        if (RegQueryValueExW(opened.get(), L"Database Path", nullptr, nullptr,
                             reinterpret_cast<BYTE*>(wide_path), &length) != ERROR_SUCCESS) {
            return false;
        }
        if (!UTIL_WideCharToUtf8(wide_path, &dbPath)) {
            opened.release();  // stays open, as the header says
            return false;
        }
        // By design, the user name may take as many bytes as the query of the path returned.
        return !is_network_path(dbPath.view()) || read_credentials(opened, length, user, password);
    });
}
