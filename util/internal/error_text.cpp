#include "util/internal/error_text.h"

#include <memory>

#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"

namespace util {
namespace {

struct LocalBlock {
    void operator()(wchar_t* block) const { LocalFree(block); }
};

}  // namespace

std::string error_text(unsigned long code) {
    constexpr DWORD flags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    constexpr DWORD users_language = 0x400;
    constexpr int most_bytes_per_unit = 3;

    const KeptErrors kept;
    wchar_t* block = nullptr;
    const DWORD units = FormatMessageW(flags, nullptr, code, users_language,
                                       reinterpret_cast<wchar_t*>(&block), 0, nullptr);
    const std::unique_ptr<wchar_t, LocalBlock> wide(block);
    if (units == 0) return {};
    std::string text(units * std::size_t{most_bytes_per_unit}, '\0');
    const int bytes =
        WideCharToMultiByte(CP_UTF8, 0, wide.get(), static_cast<int>(units), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<std::size_t>(bytes));
    return text;
}

}  // namespace util
