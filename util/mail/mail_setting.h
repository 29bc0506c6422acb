// What the registry says about the mail service.
#ifndef UTIL_MAIL_MAIL_SETTING_H
#define UTIL_MAIL_MAIL_SETTING_H

#include <string>

namespace util {

constexpr char web_server_key[] = "SOFTWARE\\Microsoft\\InetStp";

// The text of a value of the key under HKEY_LOCAL_MACHINE, in UTF-8; "" when there is none. A text
// is a value of type REG_SZ or REG_EXPAND_SZ (not expanded) that takes at most 260 bytes in the
// ANSI code page and ends in a NUL. Any thread may call it. Raises std::bad_alloc.
std::string mail_setting(const char* key, const char* value);

}  // namespace util

#endif
