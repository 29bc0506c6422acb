#include "util/mail/mail_setting.h"

#include "util/internal/registry.h"

namespace util {

std::string mail_setting(const char* key, const char* value) {
    std::string text;
    char buffer[260];
    if (const ScopedKey opened = open_machine_key(key, GENERIC_READ)) {
        read_text(opened, value, EmptyText::refused, buffer, sizeof buffer, text);
    }
    return text;
}

}  // namespace util
