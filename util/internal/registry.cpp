#include "util/internal/registry.h"

#include <new>
#include <utility>

#include "util/internal/encoding.h"

namespace util {
namespace {

// Converts the value's text, up to its first NUL. The ANSI call read it as `size` bytes.
bool to_utf8(const ScopedKey& key, const char* name, const char* ansi, DWORD size,
             std::string& out) {
    WideText wide_name;
    WideText twin;
    wchar_t* const room = twin.make_room(size + 1);  // a unit takes a byte at least
    if (!room || utf8_to_wide(name, wide_name) != Conversion::done) throw std::bad_alloc();
    DWORD room_size = (size + 1) * sizeof *room;  // a stored text may have an odd last byte
    const LSTATUS result = RegQueryValueExW(key.get(), wide_name.c_str(), nullptr, nullptr,
                                            reinterpret_cast<BYTE*>(room), &room_size);
    return ansi_to_utf8(ansi, result == ERROR_SUCCESS ? room : L"", out);
}

}  // namespace

ScopedKey open_machine_key(const char* path, REGSAM access) {
    std::string ansi_path;
    ScopedKey key;
    if (utf8_to_ansi(path, ansi_path) && RegOpenKeyExA(HKEY_LOCAL_MACHINE, ansi_path.c_str(), 0,
                                                       access, key.receive()) != ERROR_SUCCESS) {
        key.release();  // what a failed call stores is not a key
    }
    return key;
}

ScopedKey create_machine_key(const char* path, REGSAM access) {
    std::string ansi_path;
    ScopedKey key;
    if (utf8_to_ansi(path, ansi_path) &&
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, ansi_path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        access, nullptr, key.receive(), nullptr) != ERROR_SUCCESS) {
        key.release();
    }
    return key;
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
    if (length > 0 && !to_utf8(key, name, buffer, length, text)) return false;
    if (text.empty() && empty == EmptyText::refused) return false;
    out = std::move(text);
    return true;
}

LSTATUS read_any_type(const ScopedKey& key, const char* name, DWORD room, std::string& out) {
    std::string ansi_name;
    if (!utf8_to_ansi(name, ansi_name)) return ERROR_FILE_NOT_FOUND;
    NarrowText buffer;  // has a NUL after the bytes, even if the value has none
    char* const bytes = buffer.make_room(room);
    if (!bytes) throw std::bad_alloc();
    DWORD type = REG_NONE;
    const LSTATUS result = RegQueryValueExA(key.get(), ansi_name.c_str(), nullptr, &type,
                                            reinterpret_cast<BYTE*>(bytes), &room);
    if (result != ERROR_SUCCESS) return result;
    const bool is_text = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
    if (!is_text) {  // the platform has not converted these bytes either
        out = buffer.view();
        return ERROR_SUCCESS;
    }
    return to_utf8(key, name, bytes, room, out) ? ERROR_SUCCESS : ERROR_NO_UNICODE_TRANSLATION;
}

}  // namespace util
