// Fetches a text of unknown length from the platform.
#ifndef UTIL_INTERNAL_FETCH_TEXT_H
#define UTIL_INTERNAL_FETCH_TEXT_H

#include <cstddef>
#include <string>

#include "util/internal/windows.h"

namespace util {

// Calls `call(buffer, room)` with room for `usual` units. `call` returns the text's length if the
// text fits with its NUL, and otherwise the room that it needs, with the NUL. 0 means an empty text
// or a failure. Both give "".
//
// If the text does not fit, the call is made again with the room that it asked for. The text may
// have grown meanwhile, since other threads can change it. So there are up to eight calls. A text
// that never fits gives "". Raises std::bad_alloc. Example:
//     fetch_text<wchar_t>(256, [&](wchar_t* buffer, DWORD room) {
//         return GetEnvironmentVariableW(name, buffer, room);
//     })
template <typename Unit, typename Call>
std::basic_string<Unit> fetch_text(std::size_t usual, Call call) {
    constexpr int most_calls = 8;
    std::basic_string<Unit> text(usual, Unit());
    for (int calls = 0; calls < most_calls; ++calls) {
        const std::size_t room = text.size();
        const std::size_t length = call(text.data(), static_cast<DWORD>(room));
        text.resize(length);  // to what it holds, or to what it needs
        if (length < room) return text;
    }
    return {};
}

}  // namespace util

#endif
