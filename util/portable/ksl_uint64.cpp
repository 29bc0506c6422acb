#include "util/portable/ksl_uint64.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "util/internal/ascii.h"
#include "util/internal/kernels/hex_digits.h"

namespace {

enum Status { no_error = 0, too_many_digits = 1, bad_after_prefix = 2, bad_character = 4 };

// Atomic so that threads which never look at it, only reset it, do not race.
std::atomic<int> status_word{no_error};

void set_status(Status status) {
    status_word.store(status, std::memory_order_relaxed);
}

constexpr std::size_t hex_digits = 16;
constexpr std::size_t decimal_digits = 20;  // of 2^64-1

char hex_text[hex_digits + 1];
char decimal_text[decimal_digits + 1];
char zero_text[] = "0";

std::uint64_t halves_swapped(std::uint64_t v) {
    return v << 32 | v >> 32;
}

// The object is the number but for its upper half, which comes first: one load and one rotation.
std::uint64_t joined(const ksl_uint64_c& v) {
    std::uint64_t stored;
    std::memcpy(&stored, &v, sizeof stored);
    return halves_swapped(stored);
}

ksl_uint64_c split(std::uint64_t v) {
    ksl_uint64_c halves;
    v = halves_swapped(v);
    std::memcpy(static_cast<void*>(&halves), &v, sizeof v);
    return halves;
}

// The low 32 bits of v truncated to a signed 64-bit integer; 0 when it fits none.
util::ulong32 truncated(double v) {
    constexpr double two_to_63 = 9223372036854775808.0;
    if (!(v >= -two_to_63 && v < two_to_63)) return 0;
    return static_cast<util::ulong32>(static_cast<std::int64_t>(v));
}

// Left by a positive count, right by a negative one; 64 bits hold the negation of every int.
ksl_uint64_c shifted(std::uint64_t v, std::int64_t n) {
    if (n >= 64 || n <= -64) {
        set_status(no_error);
        return split(0);
    }
    if (n < 0) return split(v >> -n);
    return split(v << n);
}

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

// Fills text from its end and returns the first digit; v is not 0. Divisions of 64 bits are the
// cost, so that each yields eight digits.
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

// All 16 digits and a NUL.
void write_hex(std::uint64_t v, char (&text)[hex_digits + 1]) {
    util::kernels::hex_digits(v, text);
    text[hex_digits] = '\0';
}

// v is not 0.
std::size_t leading_hex_zeros(std::uint64_t v) {
    return static_cast<std::size_t>(__builtin_clzll(v)) / 4;
}

// As strncpy, then a NUL in the last byte: both are what callers see in buf, and no byte between.
char* copy_cut(std::string_view text, char* buf, std::size_t size) {
    std::memcpy(buf, text.data(), std::min(size - 1, text.size() + 1));
    buf[size - 1] = '\0';
    return buf;
}

const char* behind_prefix(const char* text) {
    const char* x = text[0] == '0' ? text + 1 : text;
    return util::to_lower(*x) == 'x' ? x + 1 : text;
}

// The value of a hexadecimal digit; above 15 for any other byte.
constexpr unsigned char hex_value(char c) {
    if (util::is_digit(c)) return static_cast<unsigned char>(c - '0');
    c = util::to_lower(c);
    return c >= 'a' && c <= 'f' ? static_cast<unsigned char>(c - 'a' + 10) : 0xFF;
}

constexpr auto hex_values = [] {
    std::array<unsigned char, 256> values = {};
    int byte = 0;
    for (unsigned char& value : values)
        value = hex_value(static_cast<char>(byte++));
    return values;
}();

std::uint64_t failed(Status status) {
    set_status(status);
    return 0;
}

std::uint64_t parse_hex(const char* text) {
    const char* const digits = behind_prefix(text);
    const char* p = digits;
    std::uint64_t value = 0;
    for (unsigned digit; (digit = hex_values[static_cast<unsigned char>(*p)]) < 16; ++p)
        value = value << 4 | digit;
    if (*p != '\0') return failed(digits > text ? bad_after_prefix : bad_character);
    return p - digits <= std::ptrdiff_t{hex_digits} ? value : failed(too_many_digits);
}

// One pass over what is decimal to its end; any other text is begun again.
std::uint64_t parse(const char* text) {
    const char* p = text;
    std::uint64_t value = 0;
    for (unsigned digit; (digit = static_cast<unsigned char>(*p) - unsigned{'0'}) < 10; ++p)
        value = value * 10 + digit;
    if (*p != '\0') return parse_hex(text);
    return p - text <= std::ptrdiff_t{decimal_digits} ? value : failed(too_many_digits);
}

}  // namespace

ksl_uint64_c::ksl_uint64_c() {}

ksl_uint64_c::ksl_uint64_c(util::ulong32 low, util::ulong32 high) : high_(high), low_(low) {
    set_status(no_error);
}

ksl_uint64_c::ksl_uint64_c(int v) : ksl_uint64_c(static_cast<long>(v)) {}

ksl_uint64_c::ksl_uint64_c(long v)
    : ksl_uint64_c(static_cast<util::ulong32>(v), v < 0 ? 0xFFFFFFFF : 0) {}

ksl_uint64_c::ksl_uint64_c(double v) : high_(truncated(v / 4294967296.0)), low_(truncated(v)) {}

ksl_uint64_c::ksl_uint64_c(u_hyper h) : high_(h.high), low_(h.low) {}

ksl_uint64_c::ksl_uint64_c(const char* s) : ksl_uint64_c(0, 0) {
    if (s) *this = split(parse(s));
}

util::ulong32 ksl_uint64_c::hi() const {
    return high_;
}

util::ulong32 ksl_uint64_c::lo() const {
    return low_;
}

void ksl_uint64_c::high(util::ulong32 v) {
    high_ = v;
}

void ksl_uint64_c::low(util::ulong32 v) {
    low_ = v;
}

void ksl_uint64_c::value(util::ulong32* h, util::ulong32* l) const {
    assert(h && l);
    *h = high_;
    *l = low_;
}

int ksl_uint64_c::status() {
    return status_word.load(std::memory_order_relaxed);
}

ksl_uint64_c ksl_uint64_c::operator+(ksl_uint64_c b) const {
    return split(joined(*this) + joined(b));
}

ksl_uint64_c ksl_uint64_c::operator-(ksl_uint64_c b) const {
    return split(joined(*this) - joined(b));
}

ksl_uint64_c ksl_uint64_c::operator-() const {
    set_status(no_error);
    return split(0 - joined(*this));
}

ksl_uint64_c ksl_uint64_c::operator*(ksl_uint64_c b) const {
    return split(joined(*this) * joined(b));
}

ksl_uint64_c ksl_uint64_c::operator/(ksl_uint64_c b) const {
    const std::uint64_t divisor = joined(b);
    if (divisor == 0) std::abort();
    set_status(no_error);
    return split(joined(*this) / divisor);
}

ksl_uint64_c ksl_uint64_c::operator<<(int n) const {
    return shifted(joined(*this), n);
}

ksl_uint64_c ksl_uint64_c::operator>>(int n) const {
    return shifted(joined(*this), -std::int64_t{n});
}

ksl_uint64_c& ksl_uint64_c::operator+=(ksl_uint64_c b) {
    return *this = *this + b;
}

ksl_uint64_c& ksl_uint64_c::operator-=(ksl_uint64_c b) {
    return *this = *this - b;
}

ksl_uint64_c& ksl_uint64_c::operator*=(ksl_uint64_c b) {
    return *this = *this * b;
}

ksl_uint64_c& ksl_uint64_c::operator/=(ksl_uint64_c b) {
    return *this = *this / b;
}

ksl_uint64_c& ksl_uint64_c::operator<<=(int n) {
    return *this = *this << n;
}

ksl_uint64_c& ksl_uint64_c::operator>>=(int n) {
    return *this = *this >> n;
}

ksl_uint64_c& ksl_uint64_c::operator++() {
    return *this += ksl_uint64_c(1, 0);
}

ksl_uint64_c& ksl_uint64_c::operator--() {
    return *this -= ksl_uint64_c(1, 0);
}

unsigned int ksl_uint64_c::operator==(ksl_uint64_c b) const {
    return joined(*this) == joined(b);
}

unsigned int ksl_uint64_c::operator!=(ksl_uint64_c b) const {
    return joined(*this) != joined(b);
}

unsigned int ksl_uint64_c::operator>(ksl_uint64_c b) const {
    return joined(*this) > joined(b);
}

unsigned int ksl_uint64_c::operator>=(ksl_uint64_c b) const {
    return joined(*this) >= joined(b);
}

unsigned int ksl_uint64_c::operator<(ksl_uint64_c b) const {
    return joined(*this) < joined(b);
}

unsigned int ksl_uint64_c::operator<=(ksl_uint64_c b) const {
    return joined(*this) <= joined(b);
}

ksl_uint64_c ksl_uint64_c::divide_by_10() const {
    return split(joined(*this) / 10);
}

int ksl_uint64_c::mod_10() const {
    set_status(no_error);
    return static_cast<int>(joined(*this) % 10);
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
