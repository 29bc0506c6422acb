#include "util/portable/utf8.h"

#include "util/internal/windows.h"
// after the platform's header
#include <comdef.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace {

struct Free {
    void operator()(void* block) const { std::free(block); }
};

// Zeroed room for size units and a NUL behind them: a conversion may end without writing one.
template <typename Unit>
std::unique_ptr<Unit[], Free> allocate(int size) {
    const auto units = static_cast<std::size_t>(size) + 1;
    return std::unique_ptr<Unit[], Free>(static_cast<Unit*>(std::calloc(units, sizeof(Unit))));
}

bool assign(String* out, const char* text) {
    try {
        *out = text;
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace

bool UTIL_WideCharToUtf8(const wchar_t* wide, String* out) {
    if (!out) return false;
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (size > 0) {
        const auto text = allocate<char>(size);
        if (text &&
            WideCharToMultiByte(CP_UTF8, 0, wide, -1, text.get(), size + 1, nullptr, nullptr) > 0 &&
            assign(out, text.get())) {
            return true;
        }
    }
    *out = String();
    return false;
}

bool UTIL_WcharToMultiByte(const wchar_t* wide, String* out) {
    if (!out) return false;
    constexpr DWORD flags = WC_COMPOSITECHECK | WC_SEPCHARS;
    const int size = WideCharToMultiByte(CP_ACP, flags, wide, -1, nullptr, 0, nullptr, nullptr);
    if (size < 1) return false;
    const auto text = allocate<char>(size);
    return text &&
           WideCharToMultiByte(CP_ACP, flags, wide, -1, text.get(), size, nullptr, nullptr) > 0 &&
           assign(out, text.get());
}

bool UTIL_Utf8ToWideChar(const char* utf8, _bstr_t* out) {
    if (!out) return false;
    const int size = MultiByteToWideChar(CP_UTF8, 0, utf8, -1, nullptr, 0);
    if (size > 0) {
        const auto text = allocate<wchar_t>(size);
        if (text && MultiByteToWideChar(CP_UTF8, 0, utf8, -1, text.get(), size + 1) > 0) {
            try {
                *out = _bstr_t(text.get());
                return true;
            } catch (const std::bad_alloc&) {
                _com_issue_error(E_OUTOFMEMORY);
            }
        }
    }
    *out = _bstr_t();
    return false;
}

bool UTIL_Utf8ToMultiByte(const char* utf8, String* out) {
    _bstr_t wide;
    return UTIL_Utf8ToWideChar(utf8, &wide) && UTIL_WcharToMultiByte(wide, out);
}
