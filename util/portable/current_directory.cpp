#include "util/portable/current_directory.h"

#include <cstdlib>
#include <utility>

#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/internal/windows.h"

namespace {

// Converts `text`, the `length` bytes that the ANSI call returned.
String to_utf8(const char* text, DWORD length) {
    util::WideText twin;
    wchar_t* const room = twin.make_room(length);  // a unit is at least one byte
    if (!room) return {};
    GetCurrentDirectoryW(length + 1, room);
    return util::guarded([] { return String(); },
                         [&] {
                             std::string utf8;  // stays empty if the conversion fails
                             util::ansi_to_utf8(text, room, utf8, util::Page::files);
                             return String(std::move(utf8));
                         });
}

}  // namespace

String UTIL_CurrentDirectory() {
    char usual_room[260] = {};
    const DWORD needed = GetCurrentDirectoryA(sizeof usual_room, usual_room);
    if (needed <= sizeof usual_room) return needed > 0 ? to_utf8(usual_room, needed) : String();

    auto* const room = static_cast<char*>(std::malloc(needed));
    const DWORD length = room ? GetCurrentDirectoryA(needed, room) : 0;
    // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the block stays by design, see the header
    return length > 0 && length < needed ? to_utf8(room, length) : String();
}
