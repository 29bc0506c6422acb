#include "util/internal/encoding.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "util/internal/windows.h"

namespace util {

template <typename Unit>
TextBuffer<Unit>::~TextBuffer() {
    clear();
}

template <typename Unit>
void TextBuffer<Unit>::clear() noexcept {
    SecureZeroMemory(m_text, m_size * sizeof(Unit));
}

template <typename Unit>
Unit* TextBuffer<Unit>::make_room(std::size_t size) noexcept {
    clear();
    m_size = 0;
    m_text = m_usual;
    m_long.reset(size > usual_size ? new (std::nothrow) Unit[size + 1]() : nullptr);
    if (size > usual_size && !m_long) return nullptr;
    if (m_long) m_text = m_long.get();
    m_size = size;
    return m_text;
}

template class TextBuffer<char>;
template class TextBuffer<wchar_t>;

namespace {

constexpr int up_to_nul = -1;  // and the NUL itself

UINT number_of(Page page) {
    return page == Page::files && !AreFileApisANSI() ? GetOEMCP() : GetACP();
}

// The platform counts in int and would convert the beginning of a longer text.
bool is_too_long(std::size_t length) {
    if (length < INT_MAX) return false;
    SetLastError(ERROR_INVALID_PARAMETER);
    return true;
}
bool is_too_long(const char* text) {
    return text && is_too_long(strnlen(text, INT_MAX));
}
bool is_too_long(const wchar_t* text) {
    return text && is_too_long(wcsnlen(text, INT_MAX));
}

// `call` converts into room for that many units, or returns how many it needs. `spare` units more
// than needed are offered to it. It may leave out the NUL of a text that breaks off inside a
// character; the room is zeroed.
template <typename Unit, typename Call>
Conversion convert(Call call, int spare, TextBuffer<Unit>& out) noexcept {
    const int needed = call(nullptr, 0);
    if (needed < 1 || needed == INT_MAX) return Conversion::refused;
    const int size = needed + spare;
    Unit* const room = out.make_room(static_cast<std::size_t>(size));
    if (!room) return Conversion::no_memory;
    return call(room, size) > 0 ? Conversion::done : Conversion::refused;
}

Conversion to_wide(UINT page, DWORD flags, const char* text, int length, WideText& out) noexcept {
    const auto call = [&](wchar_t* room, int size) {
        return MultiByteToWideChar(page, flags, text, length, room, size);
    };
    return convert(call, 1, out);
}

Conversion to_wide_exactly(UINT page, const char* text, WideText& out) noexcept {
    if (is_too_long(text)) return Conversion::refused;
    return to_wide(page, MB_ERR_INVALID_CHARS, text, up_to_nul, out);
}

Conversion to_narrow(UINT page, DWORD flags, const wchar_t* wide, int spare, BOOL* replaced,
                     NarrowText& out) noexcept {
    if (is_too_long(wide)) return Conversion::refused;
    const auto call = [&](char* room, int size) {
        return WideCharToMultiByte(page, flags, wide, up_to_nul, room, size, nullptr, replaced);
    };
    return convert(call, spare, out);
}

Conversion to_narrow_exactly(UINT page, const wchar_t* wide, NarrowText& out) noexcept {
    // UTF-8, which can be the ANSI page too, has every character. It refuses the flag and the
    // question of the other pages.
    if (page == CP_UTF8) return to_narrow(page, WC_ERR_INVALID_CHARS, wide, 1, nullptr, out);
    BOOL replaced = FALSE;
    const Conversion result = to_narrow(page, WC_NO_BEST_FIT_CHARS, wide, 1, &replaced, out);
    return replaced ? Conversion::refused : result;
}

bool is_done(Conversion result) {
    if (result == Conversion::no_memory) throw std::bad_alloc();
    return result == Conversion::done;
}

}  // namespace

Conversion utf8_to_wide(const char* utf8, WideText& out) noexcept {
    return is_too_long(utf8) ? Conversion::refused : to_wide(CP_UTF8, 0, utf8, up_to_nul, out);
}

Conversion utf8_to_wide(const char* utf8, std::size_t length, WideText& out) noexcept {
    if (length == 0) {
        out.make_room(0);
        return Conversion::done;
    }
    if (is_too_long(length)) return Conversion::refused;
    return to_wide(CP_UTF8, 0, utf8, static_cast<int>(length), out);
}

Conversion wide_to_utf8(const wchar_t* wide, NarrowText& out) noexcept {
    return to_narrow(CP_UTF8, 0, wide, 1, nullptr, out);
}

Conversion wide_to_similar_ansi(const wchar_t* wide, NarrowText& out) noexcept {
    return to_narrow(CP_ACP, WC_COMPOSITECHECK | WC_SEPCHARS, wide, 0, nullptr, out);
}

bool name_to_utf8(const wchar_t* name, char* out) noexcept {
    const wchar_t* unit = name;
    char* end = out;
    while (*unit != L'\0' && *unit < 0x80)
        *end++ = static_cast<char>(*unit++);
    *end = '\0';
    if (*unit == L'\0') return true;

    NarrowText utf8;
    if (wide_to_utf8(name, utf8) != Conversion::done) return false;
    std::memcpy(out, utf8.c_str(), utf8.view().size() + 1);
    return true;
}

std::string wide_to_utf8(const wchar_t* wide) {
    NarrowText utf8;
    return std::string(is_done(wide_to_utf8(wide, utf8)) ? utf8.view() : "");
}

std::wstring wide_path(const char* utf8) {
    WideText wide;
    if (utf8_to_wide(utf8, wide) != Conversion::done) throw std::bad_alloc();
    return std::wstring(wide.view());
}

bool utf8_to_ansi(const char* utf8, std::string& out, Page page) {
    if (!utf8) return false;
    std::string_view bytes = utf8;
    WideText wide;
    NarrowText converted;
    // Every ANSI page holds ASCII as it is.
    if (std::any_of(bytes.begin(), bytes.end(), [](char c) { return c < 0; })) {
        if (!is_done(to_wide_exactly(CP_UTF8, utf8, wide)) ||
            !is_done(to_narrow_exactly(number_of(page), wide.c_str(), converted))) {
            return false;
        }
        bytes = converted.view();
    }
    if (!fits_ansi_call(bytes.size())) return false;
    out = bytes;
    return true;
}

Conversion ansi_to_utf8(const char* ansi, const wchar_t* twin, Page page,
                        NarrowText& out) noexcept {
    const UINT number = number_of(page);
    NarrowText platforms_own;
    Conversion result = to_narrow(number, 0, twin, 1, nullptr, platforms_own);
    if (result != Conversion::done) return result;
    if (platforms_own.view() == ansi) return to_narrow_exactly(CP_UTF8, twin, out);

    WideText wide;
    result = to_wide_exactly(number, ansi, wide);
    return result == Conversion::done ? to_narrow_exactly(CP_UTF8, wide.c_str(), out) : result;
}

bool ansi_to_utf8(const char* ansi, const wchar_t* twin, std::string& out, Page page) {
    NarrowText utf8;
    if (!is_done(ansi_to_utf8(ansi, twin, page, utf8))) return false;
    out = utf8.view();
    return true;
}

std::string words_to_utf8(const char* ansi) {
    WideText wide;
    return is_done(to_wide(GetACP(), 0, ansi, up_to_nul, wide)) ? wide_to_utf8(wide.c_str()) : "";
}

}  // namespace util
