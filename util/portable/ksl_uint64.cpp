#include "util/portable/ksl_uint64.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "util/internal/ascii.h"

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

std::uint64_t joined(const ksl_uint64_c& v) {
    return std::uint64_t{v.hi()} << 32 | v.lo();
}

// By way of u_hyper, which leaves the status word alone.
ksl_uint64_c split(std::uint64_t v) {
    return u_hyper{static_cast<util::ulong32>(v >> 32), static_cast<util::ulong32>(v)};
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
    return split(n >= 0 ? v << n : v >> -n);
}

void write_hex(std::uint64_t v, char (&text)[hex_digits + 1]) {
    text[hex_digits] = '\0';
    for (std::size_t i = hex_digits; i-- > 0; v >>= 4)
        text[i] = "0123456789abcdef"[v & 0xF];
}

constexpr char digit_pairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

// Fills text from its end, two digits a step, and returns the first digit; v is not 0.
char* write_decimal(std::uint64_t v, char (&text)[decimal_digits + 1]) {
    char* p = text + decimal_digits;
    *p = '\0';
    for (; v >= 10; v /= 100)
        std::memcpy(p -= 2, digit_pairs + v % 100 * 2, 2);
    if (v > 0) *--p = static_cast<char>('0' + v);
    return p;
}

// As strncpy, then a NUL in the last byte: both are what callers see in buf, and no byte between.
char* copy_cut(std::string_view text, char* buf, std::size_t size) {
    std::memcpy(buf, text.data(), std::min(size - 1, text.size() + 1));
    buf[size - 1] = '\0';
    return buf;
}

bool all_decimal(std::string_view text) {
    return std::all_of(text.begin(), text.end(), util::is_digit);
}

std::string_view without_prefix(std::string_view text) {
    const std::size_t x = text[0] == '0' ? 1 : 0;
    if (x < text.size() && util::to_lower(text[x]) == 'x') text.remove_prefix(x + 1);
    return text;
}

// 0 to 15, or -1.
int hex_value(char c) {
    if (util::is_digit(c)) return c - '0';
    c = util::to_lower(c);
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::uint64_t parse_decimal(std::string_view text) {
    if (text.size() > decimal_digits) {
        set_status(too_many_digits);
        return 0;
    }
    std::uint64_t value = 0;
    for (const char c : text)
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
    return value;
}

std::uint64_t parse_hex(std::string_view text) {
    const std::string_view digits = without_prefix(text);
    std::uint64_t value = 0;
    for (const char c : digits) {
        const int digit = hex_value(c);
        if (digit < 0) {
            set_status(digits.size() < text.size() ? bad_after_prefix : bad_character);
            return 0;
        }
        value = value << 4 | static_cast<std::uint64_t>(digit);
    }
    if (digits.size() > hex_digits) {
        set_status(too_many_digits);
        return 0;
    }
    return value;
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
    if (!s || !*s) return;
    const std::string_view text(s);
    *this = split(all_decimal(text) ? parse_decimal(text) : parse_hex(text));
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
    write_hex(joined(*this), hex_text);
    if (full) return hex_text;
    set_status(no_error);
    char* const last = hex_text + hex_digits - 1;
    return std::find_if(hex_text, last, [](char c) { return c != '0'; });
}

char* ksl_uint64_c::to_hex_r(int full, char* buf, unsigned int size) const {
    if (!buf || size < 1) return buf;
    char text[hex_digits + 1];
    write_hex(joined(*this), text);
    const char* first = text;
    if (!full) first = std::find_if(text, text + 7, [](char c) { return c != '0'; });
    return copy_cut(first, buf, size);
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
