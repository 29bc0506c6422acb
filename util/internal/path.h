// Separators in paths. The contract has several rules for them, so each rule has a function here.
// UTIL_basename and UTIL_CDPbasename have a rule of their own: they cut at "/" alone.
#ifndef UTIL_INTERNAL_PATH_H
#define UTIL_INTERNAL_PATH_H

#include <string>
#include <string_view>

namespace util {

template <typename Char>
constexpr bool is_separator(Char c) {
    return c == Char('\\') || c == Char('/');
}

constexpr bool ends_in_backslash(std::string_view path) {
    return !path.empty() && path.back() == '\\';
}
constexpr bool ends_in_separator(std::string_view path) {
    return !path.empty() && is_separator(path.back());
}

// --- joining: the rules differ in when they put a backslash between the two ---

// Always. Example: "C:\" and "x" is "C:\\x".
inline std::string join_always(std::string_view directory, std::string_view name) {
    return std::string(directory).append("\\").append(name);
}
inline std::wstring join_always(std::wstring_view directory, std::wstring_view name) {
    return std::wstring(directory).append(L"\\").append(name);
}

// Unless the directory ends in "\" or "/". This is the rule of search lists and listings.
inline std::string join_unless_separated(std::string_view directory, std::string_view name) {
    return std::string(directory).append(ends_in_separator(directory) ? "" : "\\").append(name);
}

// Unless the directory ends in "\". This is the rule of host discovery's working directory.
inline std::string join_unless_backslash(std::string_view directory, std::string_view name) {
    return std::string(directory).append(ends_in_backslash(directory) ? "" : "\\").append(name);
}

// Unless the directory ends in "\" and is longer than that. This is the rule of listed entries.
// Examples: "C:/" and "x" is "C:/\x"; "\" and "x" is "\\x".
inline std::string join_entry(std::string_view directory, std::string_view name) {
    const bool separated = directory.size() > 1 && ends_in_backslash(directory);
    return std::string(directory).append(separated ? "" : "\\").append(name);
}

// --- cutting ---

// Returns what follows the last "\" or "/", or the whole path if there is none.
inline std::string_view last_component(std::string_view path) {
    return path.substr(path.find_last_of("/\\") + 1);  // npos + 1 is 0
}

// Returns the path up to and including its last "\", or "" if there is none. Ignores "/".
inline std::string_view up_to_last_backslash(std::string_view path) {
    return path.substr(0, path.rfind('\\') + 1);
}

// Returns the path before its last "\", or the whole path if there is none. Ignores "/".
inline std::string_view before_last_backslash(std::string_view path) {
    return path.substr(0, path.rfind('\\'));
}

}  // namespace util

#endif
