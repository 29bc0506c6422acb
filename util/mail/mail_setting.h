// What the registry says about the mail service.
#ifndef UTIL_MAIL_MAIL_SETTING_H
#define UTIL_MAIL_MAIL_SETTING_H

#include <string>

#include "util/internal/registry.h"

namespace util {

constexpr char web_server_key[] = "SOFTWARE\\Microsoft\\InetStp";

// Returns the text of a value of the key under HKEY_LOCAL_MACHINE, in UTF-8, or "" if there is
// none. A text is a value of type REG_SZ or REG_EXPAND_SZ (not expanded). It takes at most 260
// bytes in the ANSI code page and ends in a NUL. Any thread may call it. Raises std::bad_alloc.
inline std::string mail_setting(const char* key, const char* value) {
    std::string text;
    char buffer[260];
    if (const ScopedKey opened = open_machine_key(key, GENERIC_READ)) {
        read_text(opened, value, EmptyText::refused, buffer, sizeof buffer, text);
    }
    return text;
}

}  // namespace util

#endif
