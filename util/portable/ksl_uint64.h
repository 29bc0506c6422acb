// ksl_uint64_c: an unsigned 64-bit integer kept as two 32-bit halves.
#ifndef UTIL_PORTABLE_KSL_UINT64_H
#define UTIL_PORTABLE_KSL_UINT64_H

#include <type_traits>

#include "util/export.h"
#include "util/portable/ulong32.h"

// Two halves as other interfaces hand them over, the upper one first.
struct u_hyper {
    util::ulong32 high;  // bits 32 to 63
    util::ulong32 low;   // bits 0 to 31
};

// Sizes and counters, with arithmetic modulo 2^64, and their decimal and hexadecimal texts. A plain
// value of 8 bytes, upper half first: no virtual functions, copied bit by bit.
//
//     ksl_uint64_c size(0, 1);          // the low half comes first: 2^32
//     size += ksl_uint64_c("0x1f");
//     size.to_decimal();                // "4294967327"
//
// Every integer type converts, and a character converts as its code: '1' is 49.
//
// Status: one word for the whole process, read by status(). 0 is no error; only construction from
// text sets another code. "Status 0" below marks what resets it; every other operation leaves it
// as it is. A compound assignment does what its plain operator does.
//
// Threads: distinct objects may be used from distinct threads, but the status word and the buffers
// of to_hex and to_decimal are shared by all: what they hold may be another thread's. The _r forms
// write to the caller's buffer.
//
// Failure: dividing by zero ends the process with abort, without a message. Nothing is printed and
// nothing is raised.
class UTIL_API ksl_uint64_c {
  public:
    ksl_uint64_c();  // leaves both halves uninitialised; this is meant

    // Low half FIRST: ksl_uint64_c(5, 1) is 4294967301. Status 0.
    ksl_uint64_c(util::ulong32 low, util::ulong32 high);

    // 32 bits, sign-extended: ksl_uint64_c(-1) is 2^64-1. Status 0.
    ksl_uint64_c(int v);
    ksl_uint64_c(long v);

    // The same number: ksl_uint64_c(4000000000u) is 4000000000. Status 0. A negative `long long` is
    // sign-extended as above.
    ksl_uint64_c(unsigned int v) : ksl_uint64_c(v, util::ulong32{0}) {}
    ksl_uint64_c(unsigned long v) : ksl_uint64_c(static_cast<unsigned long long>(v)) {}
    ksl_uint64_c(long long v) : ksl_uint64_c(static_cast<unsigned long long>(v)) {}
    ksl_uint64_c(unsigned long long v)
        : ksl_uint64_c(static_cast<util::ulong32>(v), static_cast<util::ulong32>(v >> 32)) {}

    // Each half on its own, truncated to a signed 64-bit integer whose low 32 bits are kept: the
    // high half of v / 2^32, the low half of v. So -1.0 is 0x00000000FFFFFFFF, unlike -1. A half
    // whose number fits no such integer is 0: 1e300 and NaN are 0, 2^63 keeps its high half.
    ksl_uint64_c(double v);

    ksl_uint64_c(u_hyper h);  // both halves; leaves the status as it is

    // Reads decimal text (digits only, at most 20), else hexadecimal text (at most 16 digits in
    // either case, after an optional "x", "X", "0x" or "0X"). Sets the status:
    //
    //     0  no error. Null, "" and a lone prefix give 0; 20 decimal digits may wrap round.
    //     1  too many digits
    //     2  a prefix, then a character that is no hexadecimal digit
    //     4  no prefix, and a character that is no hexadecimal digit; signs and blanks are such
    //
    // With a status other than 0 the value is 0. "0x1f" is 31, "1f" is 31, "1g" sets status 4.
    ksl_uint64_c(const char* s);

    // The upper and the lower half: read, set, or both read at once.
    util::ulong32 hi() const;
    util::ulong32 lo() const;
    void high(util::ulong32 v);
    void low(util::ulong32 v);
    void value(util::ulong32* h, util::ulong32* l) const;  // neither may be null

    static int status();  // the process's status word

    // Modulo 2^64.
    ksl_uint64_c operator+(ksl_uint64_c b) const;
    ksl_uint64_c operator-(ksl_uint64_c b) const;
    ksl_uint64_c operator-() const;  // status 0
    ksl_uint64_c operator*(ksl_uint64_c b) const;
    ksl_uint64_c operator/(ksl_uint64_c b) const;  // status 0; aborts when b is 0

    // Logical shifts by any count. A negative count shifts the other way; 64 or more, either way,
    // gives 0 and status 0.
    ksl_uint64_c operator<<(int n) const;
    ksl_uint64_c operator>>(int n) const;

    // Modulo 2^64, in place.
    ksl_uint64_c& operator+=(ksl_uint64_c b);
    ksl_uint64_c& operator-=(ksl_uint64_c b);
    ksl_uint64_c& operator*=(ksl_uint64_c b);
    ksl_uint64_c& operator/=(ksl_uint64_c b);
    ksl_uint64_c& operator<<=(int n);
    ksl_uint64_c& operator>>=(int n);
    ksl_uint64_c& operator++();  // status 0
    ksl_uint64_c& operator--();  // status 0

    // 1 or 0, by unsigned value.
    unsigned int operator==(ksl_uint64_c b) const;
    unsigned int operator!=(ksl_uint64_c b) const;
    unsigned int operator>(ksl_uint64_c b) const;
    unsigned int operator>=(ksl_uint64_c b) const;
    unsigned int operator<(ksl_uint64_c b) const;
    unsigned int operator<=(ksl_uint64_c b) const;

    ksl_uint64_c divide_by_10() const;  // leaves the status alone, unlike operator/ and mod_10
    int mod_10() const;                 // the remainder, 0 to 9; status 0

    // Lower-case hexadecimal text in the library's buffer, valid until the next call of to_hex on
    // any object: all 16 digits when full is not 0; else without leading zeros, and status 0.
    // 255 gives "00000000000000ff" and "ff"; to_hex(0) of 0 is "0".
    char* to_hex(int full) const;

    // The text in buf, cut to size - 1 characters and NUL-terminated; returns buf. Besides, the
    // last of the size bytes is always set to NUL. With full 0 only the high half loses its zeros,
    // so the text differs from to_hex(0): 5 gives "000000005", 2^32 gives "100000000". 17 bytes
    // hold every value. A null buf or a size of 0 writes nothing.
    char* to_hex_r(int full, char* buf, unsigned int size) const;

    // Decimal text in the library's buffer, valid until the next call of to_decimal on any object;
    // the "0" of zero has a place of its own. Status 0.
    char* to_decimal() const;

    // The text in buf, cut to size - 1 characters and NUL-terminated; returns buf. Besides, the
    // last of the size bytes is set to NUL, except for zero, which writes just "0" (and of it
    // only the NUL into a single byte). 12345 into 3 bytes gives "12". 21 bytes hold every value. A
    // null buf or a size below 1 writes nothing. Status 0.
    char* to_decimal_r(char* buf, int size) const;

  private:
    util::ulong32 high_;
    util::ulong32 low_;
};

static_assert(sizeof(ksl_uint64_c) == 8 && std::is_trivially_copyable<ksl_uint64_c>::value &&
                  std::is_standard_layout<ksl_uint64_c>::value,
              "programs pass and store the value as two halves");

#endif
