// Character classes and case mapping of the "C" locale. Does not use the runtime's functions, since
// setlocale() in the host program changes their results. Bytes from 0x80 up are in no class.
#ifndef UTIL_INTERNAL_ASCII_H
#define UTIL_INTERNAL_ASCII_H

namespace util {

constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr bool is_control(char c) {
    return (c >= 0 && c < 0x20) || c == 0x7F;
}
constexpr char to_upper(char c) {
    return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
}
constexpr char to_lower(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

static_assert(char(-1) < 0, "bytes from 0x80 up are negative");

}  // namespace util

#endif
