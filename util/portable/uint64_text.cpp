// The texts of ksl_uint64_c. The digits are converted by hand: std::to_chars takes 1.6 times as
// long for decimal and 3 times as long for hexadecimal texts, std::from_chars 2 times as long.
// Measured by util_bench --section "64-bit".
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "util/internal/ascii.h"
#include "util/internal/kernels/hex_digits.h"
#include "util/portable/uint64_halves.h"

using util::joined;
using util::no_error;
using util::set_status;

namespace {

constexpr std::size_t hex_digits = 16;
constexpr std::size_t decimal_digits = 20;  // of 2^64-1

// The buffers that to_hex and to_decimal return.
char hex_text[hex_digits + 1];
char decimal_text[decimal_digits + 1];
char zero_text[] = "0";

constexpr char digit_pairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

char* put_pair(std::uint32_t v, char* end) {
    std::memcpy(end - 2, digit_pairs + std::size_t{v} * 2, 2);
    return end - 2;
}

char* put_four(std::uint32_t v, char* end) {
    return put_pair(v / 100, put_pair(v % 100, end));
}

// Fills `text` from its end and returns the first digit. `v` is not 0. Divisions of 64 bits are the
// main cost, so each yields eight digits: without that, the call takes a fifth longer.
char* write_decimal(std::uint64_t v, char (&text)[decimal_digits + 1]) {
    constexpr std::uint32_t eight_digits = 100000000;
    char* p = text + decimal_digits;
    *p = '\0';
    for (; v >= eight_digits; v /= eight_digits) {
        const auto block = static_cast<std::uint32_t>(v % eight_digits);
        p = put_four(block % 10000, p);
        p = put_four(block / 10000, p);
    }
    auto rest = static_cast<std::uint32_t>(v);
    for (; rest >= 100; rest /= 100)
        p = put_pair(rest % 100, p);
    if (rest >= 10) return put_pair(rest, p);
    *--p = static_cast<char>('0' + rest);
    return p;
}

// Writes all 16 digits and a NUL.
void write_hex(std::uint64_t v, char (&text)[hex_digits + 1]) {
    util::kernels::hex_digits(v, text);
    text[hex_digits] = '\0';
}

// `v` is not 0.
std::size_t leading_hex_zeros(std::uint64_t v) {
    return static_cast<std::size_t>(__builtin_clzll(v)) / 4;
}

// Copies at most `size` - 1 bytes of `text` and its NUL, then sets the last of the `size` bytes to
// NUL. The bytes between are unchanged.
char* copy_cut(std::string_view text, char* buf, std::size_t size) {
    std::memcpy(buf, text.data(), std::min(size - 1, text.size() + 1));
    buf[size - 1] = '\0';
    return buf;
}

const char* skip_prefix(const char* text) {
    const char* x = text[0] == '0' ? text + 1 : text;
    return util::to_lower(*x) == 'x' ? x + 1 : text;
}

// The value of each hexadecimal digit, and 16 for every other byte.
constexpr auto hex_values = [] {
    std::array<unsigned char, 256> values = {};
    for (unsigned char& value : values)
        value = 16;
    for (unsigned char i = 0; i < 10; ++i)
        values['0' + i] = i;
    for (unsigned char i = 10; i < 16; ++i)
        values['A' - 10 + i] = values['a' - 10 + i] = i;
    return values;
}();

std::uint64_t failed(util::Uint64Status status) {
    set_status(status);
    return 0;
}

std::uint64_t parse_hex(const char* text) {
    const char* const digits = skip_prefix(text);
    const char* p = digits;
    std::uint64_t value = 0;
    for (unsigned digit; (digit = hex_values[static_cast<unsigned char>(*p)]) < 16; ++p)
        value = value << 4 | digit;
    if (*p != '\0') return failed(digits > text ? util::bad_after_prefix : util::bad_character);
    return p - digits <= std::ptrdiff_t{hex_digits} ? value : failed(util::too_many_digits);
}

std::uint64_t parse(const char* text) {
    const char* p = text;
    std::uint64_t value = 0;
    for (unsigned digit; (digit = static_cast<unsigned char>(*p) - unsigned{'0'}) < 10; ++p)
        value = value * 10 + digit;
    if (*p != '\0') return parse_hex(text);
    return p - text <= std::ptrdiff_t{decimal_digits} ? value : failed(util::too_many_digits);
}

}  // namespace

ksl_uint64_c::ksl_uint64_c(const char* s) {
    set_status(no_error);
    *this = util::split(s ? parse(s) : 0);
}

char* ksl_uint64_c::to_hex(int full) const {
    const std::uint64_t v = joined(*this);
    write_hex(v, hex_text);
    if (full) return hex_text;
    set_status(no_error);
    return hex_text + leading_hex_zeros(v | 1);  // zero keeps one digit
}

char* ksl_uint64_c::to_hex_r(int full, char* buf, unsigned int size) const {
    if (!buf || size < 1) return buf;
    char text[hex_digits + 1];
    const std::uint64_t v = joined(*this);
    write_hex(v, text);
    // The low half and one digit before it are kept in any case.
    const std::size_t zeros = full ? 0 : leading_hex_zeros(v | std::uint64_t{1} << 32);
    return copy_cut(text + zeros, buf, size);
}

char* ksl_uint64_c::to_decimal() const {
    set_status(no_error);
    const std::uint64_t v = joined(*this);
    return v == 0 ? zero_text : write_decimal(v, decimal_text);
}

char* ksl_uint64_c::to_decimal_r(char* buf, int size) const {
    set_status(no_error);
    if (!buf || size < 1) return buf;
    const std::uint64_t v = joined(*this);
    if (v == 0)
        return copy_cut("0", buf, std::min(static_cast<std::size_t>(size), sizeof zero_text));
    char text[decimal_digits + 1];
    return copy_cut(write_decimal(v, text), buf, static_cast<std::size_t>(size));
}
