#include "util/portable/current_directory.h"

#include <cstdlib>
#include <new>
#include <utility>

#include "util/internal/ansi_text.h"
#include "util/internal/windows.h"

namespace {

String from_ansi(const char* text) {
    try {
        std::string utf8;
        return util::ansi_to_utf8(text, utf8) ? String(std::move(utf8)) : String();
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace

String UTIL_CurrentDirectory() {
    char usual_room[260] = {};
    const DWORD needed = GetCurrentDirectoryA(sizeof usual_room, usual_room);
    if (needed <= sizeof usual_room) return needed > 0 ? from_ansi(usual_room) : String();

    auto* const room = static_cast<char*>(std::malloc(needed));
    const DWORD length = room ? GetCurrentDirectoryA(needed, room) : 0;
    // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the block stays, as the header says
    return length > 0 && length < needed ? from_ansi(room) : String();
}
