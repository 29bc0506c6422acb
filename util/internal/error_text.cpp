#include "util/internal/error_text.h"

#include "util/internal/encoding.h"
#include "util/internal/kept_errors.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace util {

std::string error_text(unsigned long code) {
    constexpr DWORD flags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    constexpr DWORD users_language = 0x400;

    const KeptErrors kept;
    ScopedLocal<wchar_t> wide;
    const DWORD units = FormatMessageW(flags, nullptr, code, users_language,
                                       reinterpret_cast<wchar_t*>(wide.receive()), 0, nullptr);
    return units > 0 ? wide_to_utf8(wide.get()) : std::string();
}

}  // namespace util
