#include "errors.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <cstring>

namespace {

// "Access denied.\r\n" and 5 become "Access denied (error 5)".
String with_code(const String& text, long code) {
    const String words = text.trim(" .\r\n");
    const String number = String::format("error %ld", code);
    return words.empty() ? number : words + " (" + number + ")";
}

}  // namespace

String error_text(unsigned long code) {
    SetLastError(code);  // UTIL_FormatMessage() asks for this thread's last error
    return last_error_text();
}

String last_error_text() {
    const auto code = static_cast<long>(GetLastError());
    String text;
    UTIL_FormatMessage(text);
    return with_code(text, code);
}

String error_text(const XrFile& file) {
    int code = 0;
    file.Error(code);
    if (code < 0) return with_code("", code);  // the file's own, as for a damaged record
    // A failed open records the system's code, a failed transfer errno. The numbers overlap.
    if (static_cast<DWORD>(code) == GetLastError()) return last_error_text();
    return with_code(std::strerror(code), code);
}
