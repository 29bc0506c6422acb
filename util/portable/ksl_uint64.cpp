#include "util/portable/ksl_uint64.h"

#include <cassert>
#include <cstdint>
#include <cstdlib>

#include "util/portable/uint64_halves.h"

using util::joined;
using util::set_status;
using util::split;

namespace {

// Returns the low 32 bits of `v` truncated to a signed 64-bit integer; 0 when it fits none.
util::ulong32 truncated(double v) {
    constexpr double two_to_63 = 9223372036854775808.0;
    if (!(v >= -two_to_63 && v < two_to_63)) return 0;
    return static_cast<util::ulong32>(static_cast<std::int64_t>(v));
}

// Shifts left by a positive count, right by a negative one. 64 bits hold the negation of every int.
ksl_uint64_c shifted(std::uint64_t v, std::int64_t n) {
    if (n >= 64 || n <= -64) {
        set_status(util::no_error);
        return split(0);
    }
    if (n < 0) return split(v >> -n);
    return split(v << n);
}

}  // namespace

ksl_uint64_c::ksl_uint64_c() {}

ksl_uint64_c::ksl_uint64_c(util::ulong32 low, util::ulong32 high) : high_(high), low_(low) {
    set_status(util::no_error);
}

ksl_uint64_c::ksl_uint64_c(int v) : ksl_uint64_c(static_cast<long>(v)) {}

ksl_uint64_c::ksl_uint64_c(long v)
    : ksl_uint64_c(static_cast<util::ulong32>(v), v < 0 ? 0xFFFFFFFF : 0) {}

ksl_uint64_c::ksl_uint64_c(double v) : high_(truncated(v / 4294967296.0)), low_(truncated(v)) {}

ksl_uint64_c::ksl_uint64_c(u_hyper h) : high_(h.high), low_(h.low) {}

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
    return util::uint64_status.load(std::memory_order_relaxed);
}

ksl_uint64_c ksl_uint64_c::operator+(ksl_uint64_c b) const {
    return split(joined(*this) + joined(b));
}

ksl_uint64_c ksl_uint64_c::operator-(ksl_uint64_c b) const {
    return split(joined(*this) - joined(b));
}

ksl_uint64_c ksl_uint64_c::operator-() const {
    set_status(util::no_error);
    return split(0 - joined(*this));
}

ksl_uint64_c ksl_uint64_c::operator*(ksl_uint64_c b) const {
    return split(joined(*this) * joined(b));
}

ksl_uint64_c ksl_uint64_c::operator/(ksl_uint64_c b) const {
    const std::uint64_t divisor = joined(b);
    if (divisor == 0) std::abort();
    set_status(util::no_error);
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
    set_status(util::no_error);
    return static_cast<int>(joined(*this) % 10);
}
