#include "util/files/wide_path.h"

#include "util/internal/windows.h"
// after the platform's header
#include <comutil.h>

#include <new>

#include "util/portable/utf8.h"

namespace util {

std::wstring wide_path(const char* utf8) {
    _bstr_t wide;
    if (!UTIL_Utf8ToWideChar(utf8, &wide)) throw std::bad_alloc();  // nothing else can be wrong
    return static_cast<const wchar_t*>(wide);
}

}  // namespace util
