// Fetches a text of unknown length from the platform.
#ifndef UTIL_INTERNAL_FETCH_TEXT_H
#define UTIL_INTERNAL_FETCH_TEXT_H

#include <cstddef>
#include <vector>

#include "util/internal/windows.h"

namespace util {

// Calls `call(buffer, room)` with room for `usual` units. `call` returns the text's length if the
// text fits with its NUL, and otherwise the room that it needs, with the NUL. 0 means an empty text
// or a failure. Returns the text and a NUL, so an empty text and a failure give just the NUL.
//
// If the text does not fit, the call is made again with the room that it asked for. The text may
// have grown meanwhile, since other threads can change it. So there are up to eight calls. A text
// that never fits is a failure. Raises std::bad_alloc. Example:
//     fetch_text<wchar_t>(256, [&](wchar_t* buffer, DWORD room) {
//         return GetEnvironmentVariableW(name, buffer, room);
//     })
template <typename Unit, typename Call>
std::vector<Unit> fetch_text(std::size_t usual, Call call) {
    constexpr int most_calls = 8;
    std::vector<Unit> text(usual);
    for (int calls = 0; calls < most_calls; ++calls) {
        const std::size_t length = call(text.data(), static_cast<DWORD>(text.size()));
        if (length < text.size()) {
            text.resize(length + 1);
            text.back() = Unit();
            return text;
        }
        text.resize(length);
    }
    return std::vector<Unit>(1);
}

}  // namespace util

#endif
