#include "util/portable/current_directory.h"

#include <cstdlib>
#include <new>

#include "util/internal/ansi_text.h"
#include "util/internal/windows.h"

String UTIL_CurrentDirectory() {
    char usual_room[260];
    char* text = usual_room;
    DWORD room = sizeof usual_room;
    DWORD length = GetCurrentDirectoryA(room, text);
    if (length > room) {
        room = length;
        text = static_cast<char*>(std::malloc(room));  // stays allocated, as the header says
        length = text ? GetCurrentDirectoryA(room, text) : 0;
    }
    std::string utf8;
    try {
        if (length == 0 || length > room || !util::ansi_to_utf8(text, utf8)) return String();
        return String(std::move(utf8));
    } catch (const std::bad_alloc&) {
        return String();
    }
}
