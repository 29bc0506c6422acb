// What every test includes: GoogleTest, the common headers of the standard library, and the results
// of a call as words. Tests do not repeat these includes.
#ifndef UTIL_TESTS_SUPPORT_TEST_H
#define UTIL_TESTS_SUPPORT_TEST_H

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace util_test {

// The results of one call. A null pointer is the word $null.
using Words = std::vector<std::string>;

template <typename T, typename = void>
constexpr bool has_str = false;
template <typename T>
constexpr bool has_str<T, std::void_t<decltype(std::declval<const T&>().str())>> = true;

inline void say(Words& words, const Words& values) {
    words.insert(words.end(), values.begin(), values.end());
}
template <typename T>
void say(Words& words, const T& value) {
    if constexpr (std::is_same_v<T, bool>) {
        words.push_back(value ? "true" : "false");
    } else if constexpr (has_str<T>) {
        words.push_back(value.str());
    } else if constexpr (std::is_same_v<T, std::string>) {
        words.push_back(value);
    } else if constexpr (std::is_convertible_v<T, const char*>) {
        const char* const text = value;
        words.push_back(text ? text : "$null");
    } else {
        std::ostringstream out;
        out << value;
        words.push_back(out.str());
    }
}
// The elements in order, or the word "none".
template <typename T>
void say(Words& words, const std::vector<T>& values) {
    if (values.empty()) words.push_back("none");
    for (const T& value : values)
        say(words, value);
}

// said(true, 7, text) is {"true", "7", text}.
template <typename... Values>
Words said(const Values&... values) {
    Words words;
    (say(words, values), ...);
    return words;
}

inline std::string hex(std::uint64_t value) {
    std::ostringstream out;
    out << std::hex << std::showbase << value;
    return out.str();
}

}  // namespace util_test

#endif
