#include "util/portable/current_directory.h"

#include <cstdlib>
#include <new>
#include <utility>

#include "util/internal/encoding.h"
#include "util/internal/windows.h"

namespace {

// The ANSI call has returned `text` of `length` bytes.
String to_utf8(const char* text, DWORD length) {
    util::WideText twin;
    wchar_t* const room = twin.make_room(length);  // a unit takes a byte at least
    if (!room) return {};
    GetCurrentDirectoryW(length + 1, room);
    try {
        std::string utf8;
        if (!util::ansi_to_utf8(text, room, utf8, util::Page::files)) return {};
        return String(std::move(utf8));
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace

String UTIL_CurrentDirectory() {
    char usual_room[260] = {};
    const DWORD needed = GetCurrentDirectoryA(sizeof usual_room, usual_room);
    if (needed <= sizeof usual_room) return needed > 0 ? to_utf8(usual_room, needed) : String();

    auto* const room = static_cast<char*>(std::malloc(needed));
    const DWORD length = room ? GetCurrentDirectoryA(needed, room) : 0;
    // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the block stays, as the header says
    return length > 0 && length < needed ? to_utf8(room, length) : String();
}
