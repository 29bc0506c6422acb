#include "util/portable/environment.h"

#include <new>

#include "util/internal/fetch_text.h"
#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"
#include "util/portable/utf8.h"

namespace util {

String environment_value(const wchar_t* name) {
    const KeptErrors kept;
    const auto value = fetch_text<wchar_t>(256, [&](wchar_t* buffer, DWORD room) {
        return GetEnvironmentVariableW(name, buffer, room);
    });
    String utf8;
    if (!UTIL_WideCharToUtf8(value.data(), &utf8)) throw std::bad_alloc();
    return utf8;
}

}  // namespace util
