#include "util/host/registry_value.h"

#include <cstdlib>
#include <utility>

#include "util/internal/registry.h"

int UTIL_GetRegistryValue(String const& key, String const& name, String& out) try {
    const util::ScopedKey opened = util::open_machine_key(key, KEY_READ);
    if (!opened) return -1;
    constexpr DWORD room = 1024;
    auto* const buffer = static_cast<char*>(std::malloc(room));  // stays, as the header says
    std::string text;
    if (!buffer || !util::read_text(opened, name, util::EmptyText::accepted, buffer, room, text)) {
        return -1;
    }
    out = String(std::move(text));
    return 0;
} catch (...) {
    return -1;
}
