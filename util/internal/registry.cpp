#include "util/internal/registry.h"

#include <utility>

#include "util/internal/ansi_text.h"
#include "util/internal/clear_at_end.h"

namespace util {

ScopedKey open_machine_key(const char* path, REGSAM access) {
    std::string ansi_path;
    HKEY key = nullptr;
    if (!utf8_to_ansi(path, ansi_path) ||
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, ansi_path.c_str(), 0, access, &key) != ERROR_SUCCESS) {
        return ScopedKey();
    }
    return ScopedKey(key);
}

ScopedKey create_machine_key(const char* path, REGSAM access) {
    std::string ansi_path;
    HKEY key = nullptr;
    if (!utf8_to_ansi(path, ansi_path) ||
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, ansi_path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        access, nullptr, &key, nullptr) != ERROR_SUCCESS) {
        return ScopedKey();
    }
    return ScopedKey(key);
}

bool read_text(const ScopedKey& key, const char* name, EmptyText empty, char* buffer, DWORD size,
               std::string& out) {
    std::string ansi_name;
    DWORD type = REG_NONE;
    DWORD length = size;
    if (!utf8_to_ansi(name, ansi_name) ||
        RegQueryValueExA(key.get(), ansi_name.c_str(), nullptr, &type,
                         reinterpret_cast<BYTE*>(buffer), &length) != ERROR_SUCCESS) {
        return false;
    }
    if (type != REG_SZ && type != REG_EXPAND_SZ) return false;
    if (length > 0 && buffer[length - 1] != '\0') return false;

    std::string text;
    if (length > 0 && !ansi_to_utf8(buffer, text)) return false;
    if (text.empty() && empty == EmptyText::refused) return false;
    out = std::move(text);
    return true;
}

LSTATUS read_any_type(const ScopedKey& key, const char* name, DWORD room, std::string& out) {
    std::string ansi_name;
    if (!utf8_to_ansi(name, ansi_name)) return ERROR_FILE_NOT_FOUND;
    std::string bytes(room, '\0');  // and a NUL behind them, whatever the value ends in
    const ClearAtEnd clear(bytes);  // a password may be among them
    DWORD type = REG_NONE;
    const LSTATUS result = RegQueryValueExA(key.get(), ansi_name.c_str(), nullptr, &type,
                                            reinterpret_cast<BYTE*>(bytes.data()), &room);
    if (result != ERROR_SUCCESS) return result;
    const bool is_text = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
    if (!is_text) {  // bytes that the platform has not recoded either
        out.assign(bytes, 0, bytes.find('\0'));
        return ERROR_SUCCESS;
    }
    return ansi_to_utf8(bytes.c_str(), out) ? ERROR_SUCCESS : ERROR_NO_UNICODE_TRANSLATION;
}

}  // namespace util
