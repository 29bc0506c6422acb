/// @file
/// `ksl_uint64_c`: an unsigned 64-bit integer kept as two 32-bit halves.
#ifndef UTIL_PORTABLE_KSL_UINT64_H
#define UTIL_PORTABLE_KSL_UINT64_H

#include <type_traits>

#include "util/export.h"
#include "util/portable/ulong32.h"

/// Two halves as other interfaces pass them, the upper half first.
struct u_hyper {
    util::ulong32 high;  ///< bits 32 to 63
    util::ulong32 low;   ///< bits 0 to 31
};

/// An unsigned number for sizes and counters, with arithmetic modulo 2^64 and conversion to and
/// from decimal and hexadecimal text. A value of 8 bytes, upper half first, without virtual
/// functions. It may be copied byte by byte.
///
///     ksl_uint64_c size(0, 1);          // the low half comes first: 2^32
///     size += ksl_uint64_c("0x1f");
///     size.to_decimal();                // "4294967327"
///
/// Every integer type converts. A character converts as its code: ``'1'`` is 49.
///
/// Status: status() returns one word of the whole process. 0 is no error. Only construction from
/// text sets another code. "Status 0" below means that the operation resets it. Every other
/// operation leaves it unchanged. A compound assignment sets the status as its plain operator does.
///
/// Threads: Different threads may use different objects. All threads share the status word and the
/// buffers of to_hex and to_decimal, so these may contain what another thread wrote. to_hex_r and
/// to_decimal_r write to the caller's buffer.
///
/// Failure: Division by zero ends the process with `abort`, without a message. Nothing is printed
/// and nothing is raised.
class UTIL_API ksl_uint64_c {
  public:
    ksl_uint64_c();  ///< Leaves both halves uninitialised, by design.

    /// Takes the low half FIRST: `ksl_uint64_c(5, 1)` is 4294967301. Status 0.
    ksl_uint64_c(util::ulong32 low, util::ulong32 high);

    /// Takes a signed 32-bit number and extends its sign: `ksl_uint64_c(-1)` is 2^64-1. Status 0.
    /// @{
    ksl_uint64_c(int v);
    ksl_uint64_c(long v);
    /// @}

    /// Takes the number: `ksl_uint64_c(4000000000u)` is 4000000000. A negative `long long` is
    /// sign-extended. Status 0.
    /// @{
    ksl_uint64_c(unsigned int v) : ksl_uint64_c(v, util::ulong32{0}) {}
    ksl_uint64_c(unsigned long v) : ksl_uint64_c(static_cast<unsigned long long>(v)) {}
    ksl_uint64_c(long long v) : ksl_uint64_c(static_cast<unsigned long long>(v)) {}
    ksl_uint64_c(unsigned long long v)
        : ksl_uint64_c(static_cast<util::ulong32>(v), static_cast<util::ulong32>(v >> 32)) {}
    /// @}

    /// Computes each half on its own: the high half from `v` / 2^32, the low half from `v`.
    /// Truncates that number to a signed 64-bit integer and keeps the low 32 bits. By design, -1.0
    /// gives 0x00000000FFFFFFFF, unlike -1. If the number does not fit, that half is 0: 1e300 and
    /// NaN give 0, and 2^63 keeps its high half. The status is unchanged.
    ksl_uint64_c(double v);

    ksl_uint64_c(u_hyper h);  ///< Takes both halves. The status is unchanged.

    /// Reads decimal text: digits only, at most 20. Reads any other text as hexadecimal: an
    /// optional prefix `"x"`, `"X"`, `"0x"` or `"0X"`, and at most 16 digits in either case. Sets
    /// the status:
    ///
    ///     0  no error; null, "" and a prefix alone are 0; 20 decimal digits may wrap
    ///     1  too many digits
    ///     2  a prefix, then a character that is not a hexadecimal digit
    ///     4  no prefix, and a character that is not a hexadecimal digit, such as a sign or a blank
    ///
    /// The value is 0 if the status is not. `"0x1f"` and `"1f"` are 31. `"1g"` sets status 4.
    ksl_uint64_c(const char* s);

    util::ulong32 hi() const;    ///< Returns the upper half.
    util::ulong32 lo() const;    ///< Returns the lower half.
    void high(util::ulong32 v);  ///< Sets the upper half.
    void low(util::ulong32 v);   ///< Sets the lower half.

    /// Stores the upper half in `*h` and the lower half in `*l`. Neither may be null.
    void value(util::ulong32* h, util::ulong32* l) const;

    /// Returns the status word of the process.
    static int status();

    ksl_uint64_c operator+(ksl_uint64_c b) const;  ///< The sum modulo 2^64.
    ksl_uint64_c operator-(ksl_uint64_c b) const;  ///< The difference modulo 2^64.
    ksl_uint64_c operator-() const;                ///< 2^64 minus the value, modulo 2^64. Status 0.
    ksl_uint64_c operator*(ksl_uint64_c b) const;  ///< The product modulo 2^64.
    ksl_uint64_c operator/(ksl_uint64_c b) const;  ///< The quotient. Status 0. Aborts if `b` is 0.

    /// Shifts in zeros, by any count. A negative count shifts the other way. A count of 64 or
    /// more in either direction gives 0 and status 0.
    /// @{
    ksl_uint64_c operator<<(int n) const;
    ksl_uint64_c operator>>(int n) const;
    /// @}

    /// Changes this object, modulo 2^64. Sets the status as the operator without `=` does.
    /// @{
    ksl_uint64_c& operator+=(ksl_uint64_c b);
    ksl_uint64_c& operator-=(ksl_uint64_c b);
    ksl_uint64_c& operator*=(ksl_uint64_c b);
    ksl_uint64_c& operator/=(ksl_uint64_c b);
    ksl_uint64_c& operator<<=(int n);
    ksl_uint64_c& operator>>=(int n);
    /// @}

    ksl_uint64_c& operator++();  ///< Adds 1, modulo 2^64. Status 0.
    ksl_uint64_c& operator--();  ///< Subtracts 1, modulo 2^64. Status 0.

    /// Compares the values as unsigned numbers. Returns 1 or 0.
    /// @{
    unsigned int operator==(ksl_uint64_c b) const;
    unsigned int operator!=(ksl_uint64_c b) const;
    unsigned int operator>(ksl_uint64_c b) const;
    unsigned int operator>=(ksl_uint64_c b) const;
    unsigned int operator<(ksl_uint64_c b) const;
    unsigned int operator<=(ksl_uint64_c b) const;
    /// @}

    /// Returns the value divided by 10. The status is unchanged, unlike with operator/ and mod_10.
    ksl_uint64_c divide_by_10() const;

    /// Returns the remainder of a division by 10, 0 to 9. Status 0.
    int mod_10() const;

    /// Returns lower-case hexadecimal text in a buffer of the library. Valid until the next call of
    /// to_hex on any object. Writes all 16 digits if `full` is not 0. Otherwise omits leading
    /// zeros, and sets status 0. 255 gives `"00000000000000ff"` and `"ff"`. `to_hex(0)` of 0 is
    /// `"0"`.
    char* to_hex(int full) const;

    /// Writes the text to `buf`, cut to `size` - 1 characters and NUL-terminated. Returns `buf`.
    /// Also sets the last of the `size` bytes to NUL. By design, with `full` 0 only the high half
    /// loses its zeros, so the text differs from `to_hex(0)`: 5 gives `"000000005"`, 2^32 gives
    /// `"100000000"`. 17 bytes hold every value. Writes nothing for a null `buf` or a `size` of 0.
    char* to_hex_r(int full, char* buf, unsigned int size) const;

    /// Returns decimal text in a buffer of the library. Valid until the next call of to_decimal on
    /// any object. The text of zero has a buffer of its own. Status 0.
    char* to_decimal() const;

    /// Writes the text to `buf`, cut to `size` - 1 characters and NUL-terminated. Returns `buf`.
    /// Also sets the last of the `size` bytes to NUL, except for zero: that writes `"0"` and a NUL
    /// only, or the NUL alone if `size` is 1. 12345 into 3 bytes gives `"12"`. 21 bytes hold every
    /// value. Writes nothing for a null `buf` or a `size` below 1. Status 0.
    char* to_decimal_r(char* buf, int size) const;

  private:
    util::ulong32 high_;
    util::ulong32 low_;
};

static_assert(sizeof(ksl_uint64_c) == 8 && std::is_trivially_copyable<ksl_uint64_c>::value &&
                  std::is_standard_layout<ksl_uint64_c>::value,
              "programs pass and store the value as two halves");

#endif
