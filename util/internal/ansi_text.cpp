#include "util/internal/ansi_text.h"

#include <algorithm>
#include <climits>
#include <string_view>
#include <utility>

#include "util/internal/clear_at_end.h"
#include "util/internal/windows.h"

namespace util {
namespace {

// Every ANSI page holds ASCII as it is.
bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0; });
}

bool to_wide(UINT page, std::string_view text, std::wstring& wide) {
    if (text.size() > INT_MAX) return false;
    wide.resize(text.size());  // no page needs more units than bytes
    const int length = static_cast<int>(text.size());
    const int units =
        MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, text.data(), length, wide.data(), length);
    wide.resize(static_cast<std::size_t>(units));
    return units > 0;
}

bool from_wide(UINT page, const std::wstring& wide, std::string& out) {
    // UTF-8, which can be the ANSI page too, holds every character and refuses the questions that
    // the others are asked.
    const bool is_utf8 = page == CP_UTF8;
    const DWORD flags = is_utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    BOOL replaced = FALSE;
    const auto convert = [&](char* bytes, int room) {
        return WideCharToMultiByte(page, flags, wide.data(), static_cast<int>(wide.size()), bytes,
                                   room, nullptr, is_utf8 ? nullptr : &replaced);
    };
    const int needed = convert(nullptr, 0);
    if (needed <= 0 || replaced) return false;
    std::string bytes(static_cast<std::size_t>(needed), '\0');
    const ClearAtEnd clear(bytes);
    if (convert(bytes.data(), needed) != needed || replaced) return false;
    out = std::move(bytes);
    return true;
}

bool convert(UINT from, UINT to, const char* text, std::string& out) {
    if (!text) return false;
    const std::string_view view = text;
    if (is_ascii(view)) {
        out = view;
        return true;
    }
    std::wstring wide;
    const ClearAtEnd clear(wide);  // the text may be a password
    return to_wide(from, view, wide) && from_wide(to, wide, out);
}

}  // namespace

bool utf8_to_ansi(const char* utf8, std::string& out) {
    return convert(CP_UTF8, GetACP(), utf8, out);
}

bool ansi_to_utf8(const char* ansi, std::string& out) {
    return convert(GetACP(), CP_UTF8, ansi, out);
}

}  // namespace util
