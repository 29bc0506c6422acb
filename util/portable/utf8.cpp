#include "util/portable/utf8.h"

#include "util/internal/windows.h"
// after the platform's header
#include <comdef.h>

#include "util/internal/encoding.h"
#include "util/internal/guarded.h"

namespace {

bool assign(String* out, const util::NarrowText& text) {
    return util::guarded(false, [&] {
        *out = text.c_str();
        return true;
    });
}

}  // namespace

bool UTIL_WideCharToUtf8(const wchar_t* wide, String* out) {
    if (!out) return false;
    util::NarrowText text;
    if (util::wide_to_utf8(wide, text) == util::Conversion::done && assign(out, text)) return true;
    *out = String();
    return false;
}

bool UTIL_WcharToMultiByte(const wchar_t* wide, String* out) {
    if (!out) return false;
    util::NarrowText text;
    return util::wide_to_similar_ansi(wide, text) == util::Conversion::done && assign(out, text);
}

bool UTIL_Utf8ToWideChar(const char* utf8, _bstr_t* out) {
    if (!out) return false;
    util::WideText text;
    if (util::utf8_to_wide(utf8, text) != util::Conversion::done) {
        *out = _bstr_t();
        return false;
    }
    const bool assigned = util::guarded(false, [&] {
        *out = _bstr_t(text.c_str());
        return true;
    });
    if (!assigned) _com_issue_error(E_OUTOFMEMORY);  // the exception that the header promises
    return true;
}

bool UTIL_Utf8ToMultiByte(const char* utf8, String* out) {
    _bstr_t wide;
    return UTIL_Utf8ToWideChar(utf8, &wide) && UTIL_WcharToMultiByte(wide, out);
}
