#include "util/portable/environment.h"

#include <new>
#include <string>

#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"
#include "util/portable/utf8.h"

namespace util {

String environment_value(const wchar_t* name) {
    const KeptErrors kept;
    std::wstring value(256, L'\0');
    for (;;) {
        const auto room = static_cast<DWORD>(value.size());
        const DWORD length = GetEnvironmentVariableW(name, value.data(), room);
        value.resize(length);  // the length of the value, or the size that it needs
        if (length < room) break;
    }
    String utf8;
    if (!UTIL_WideCharToUtf8(value.c_str(), &utf8)) throw std::bad_alloc();
    return utf8;
}

}  // namespace util
