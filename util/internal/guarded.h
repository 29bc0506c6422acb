// The boundary that no exception crosses.
#ifndef UTIL_INTERNAL_GUARDED_H
#define UTIL_INTERNAL_GUARDED_H

#include <type_traits>

namespace util {

// Returns what `body` returns, or `on_failure` if it throws. `on_failure` is a value, or a function
// that is called then, for instance to set the error code. It must not throw. Example:
//
//   int UTIL_squeeze(const char* path) {
//       return guarded(-1, [&] { return squeeze(String(path)); });  // -1 when out of memory
//   }
template <class OnFailure, class Body>
auto guarded(OnFailure&& on_failure, Body&& body) noexcept -> decltype(body()) {
    try {
        return body();
    } catch (...) {
        if constexpr (std::is_invocable_v<OnFailure&>)
            return on_failure();
        else
            return on_failure;
    }
}

}  // namespace util

#endif
