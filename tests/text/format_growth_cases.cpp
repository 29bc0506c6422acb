// Watches the one formatting buffer from a fresh start, so it runs in a process of its own and its
// cases in the order they stand.

#include <clocale>
#include <cstdarg>
#include <new>

#include "support/cases.h"
#include "support/import_patch.h"
#include "torture/resources.h"
#include "util/text/byte_string.h"

using namespace util_test;

namespace {

struct World : CaseWorld {
    // The size of the shared buffer: where a text is made that fits no smaller one.
    size_t buffer_size() {
        sizes.clear();
        String::format("%1024s", "x");
        return sizes.at(1);
    }
    void count_gives(int count) {
        patch.emplace("_vscprintf_l", [=] { return count; });
    }
    void no_memory() {
        patch.emplace("_Znay", [](size_t) -> void* { throw std::bad_alloc(); });
    }

    std::vector<size_t> sizes;  // with which the runtime's formatter was called
    bool raises = false;        // the formatter
    bool reports = false;       // the length that it needs, instead of -1
    const ImportPatch spy{"_vsnprintf_s_l",
                          [this](char* buffer, size_t size, size_t count, const char* format,
                                 _locale_t locale, char* arguments) {
                              sizes.push_back(size);
                              if (raises) throw std::runtime_error("formatter");
                              if (reports) return vsnprintf(buffer, size, format, arguments);
                              return _vsnprintf_s_l(buffer, size, count, format, locale, arguments);
                          }};
    std::optional<ImportPatch> patch;
};

// Makes a text of the length. Whether it is right.
bool made(const char* format, int length) {
    const String text = String::pad(length - 1);
    return String::format(format, text.c_str(), 'x') == text + "x";
}

// A format that the runtime refuses: the text and errno, which is 77 before.
Words refused(const char* format, int length) {
    errno = 77;
    const String text = String::format(format, String::pad(length).c_str(), L"\x20ac");
    return said(text, errno);
}

// Growing leaves the last error alone.
bool keeps_last_error(int length) {
    SetLastError(77);
    return made("%1s%c", length) && GetLastError() == 77;
}

// The heap blocks that stay, loading after loading of a copy that nobody else holds.
long blocks_left(int loads, int length) {
    const auto copy = std::filesystem::absolute("util_copy.dll");
    char path[1000];
    GetModuleFileNameA(GetModuleHandleA("util.dll"), path, sizeof path);
    std::filesystem::copy_file(path, copy, std::filesystem::copy_options::overwrite_existing);
    const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    long before = 0;
    for (int i = 0; i <= loads; ++i) {
        if (i == 1) before = torture::blocks_of(heap);  // the first load is the platform's
        const HMODULE library = LoadLibraryW(copy.c_str());
        const auto format = reinterpret_cast<String (*)(const char*, ...)>(
            reinterpret_cast<void*>(GetProcAddress(library, "_ZN6String6formatEPKcz")));
        EXPECT_EQ(format("%*s", length, "").size(), size_t(length));
        FreeLibrary(library);
    }
    const long left = torture::blocks_of(heap) - before;
    std::filesystem::remove(copy);
    return left;
}

// In that locale, 0xA0 is white space.
Words in_german() {
    EXPECT_NE(std::setlocale(LC_ALL, "German"), nullptr);
    const Words words = said(String(1.5), String("\xA0\x35").to_int(), String("\xE4").to_upper());
    std::setlocale(LC_ALL, "C");
    return words;
}

const Cases<World> cases("text/format_growth.cases",
                         {
                             call("by_runtime", [](int length) { return made("%1s%c", length); }),
                             call("by_library", [](int length) { return made("%s%c", length); }),
                             call("refused", refused),
                             call("sizes", [](World& w) { return w.sizes; }),
                             call("buffer_size", &World::buffer_size),
                             call("raises", [](World& w, bool raises) { w.raises = raises; }),
                             call("reports", [](World& w, bool reports) { w.reports = reports; }),
                             call("count_gives", &World::count_gives),
                             call("no_memory", &World::no_memory),
                             call("memory", [](World& w) { w.patch.reset(); }),
                             call("keeps_last_error", keeps_last_error),
                             call("blocks_left", blocks_left),
                             call("in_german", in_german),
                         });

}  // namespace
