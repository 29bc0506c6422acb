#include "util/host/error_message.h"

#include <new>

#include "util/internal/error_text.h"
#include "util/internal/windows.h"

void UTIL_FormatMessage(String& out) {
    const DWORD code = GetLastError();
    try {
        out = String(util::error_text(code));
    } catch (const std::bad_alloc&) {
        out = String();
    }
}
