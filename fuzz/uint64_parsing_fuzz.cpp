#include <cstring>

#include "fuzz/fuzz.h"
#include "util/internal/ascii.h"
#include "util/portable/ksl_uint64.h"

namespace util_fuzz {
namespace {

std::uint64_t native(ksl_uint64_c v) {
    return std::uint64_t{v.hi()} << 32 | v.lo();
}

ksl_uint64_c halves(std::uint64_t v) {
    return {static_cast<util::ulong32>(v), static_cast<util::ulong32>(v >> 32)};
}

struct Parsed {
    std::uint64_t value;
    int status;
};

// The rules for text, told one after the other.
Parsed model_parse(const std::string& text) {
    const auto consists_of = [](const std::string& s, const char* set) {
        return s.find_first_not_of(set) == std::string::npos;
    };
    if (consists_of(text, "0123456789")) {
        if (text.size() > 20) return {0, 1};
        std::uint64_t value = 0;
        for (const char c : text) {
            value = value * 10 + static_cast<std::uint64_t>(c - '0');
        }
        return {value, 0};
    }
    std::string digits = text;
    for (const char* prefix : {"0x", "0X", "x", "X"}) {
        if (digits.size() == text.size() && text.compare(0, std::strlen(prefix), prefix) == 0) {
            digits.erase(0, std::strlen(prefix));
        }
    }
    if (!consists_of(digits, "0123456789abcdefABCDEF")) {
        return {0, digits.size() < text.size() ? 2 : 4};
    }
    if (digits.size() > 16) return {0, 1};
    return {digits.empty() ? 0 : std::strtoull(digits.c_str(), nullptr, 16), 0};
}

std::string hex_of(std::uint64_t v, std::size_t digits) {
    std::string text;
    for (; v > 0 || text.size() < digits; v >>= 4) {
        text.insert(text.begin(), "0123456789abcdef"[v & 15]);
    }
    return text;
}

// What a caller's bytes hold afterwards: the text cut short, a NUL in the last byte of the size
// given, and nothing else.
std::string model_cut(const std::string& text, std::size_t room, std::size_t size) {
    std::string bytes(room, '#');
    if (size > 0) {
        bytes.replace(0, std::min(size - 1, text.size() + 1), text.c_str(),
                      std::min(size - 1, text.size() + 1));
        bytes[size - 1] = '\0';
    }
    return bytes;
}

void check_text(std::uint64_t v) {
    const ksl_uint64_c value = halves(v);
    const std::string decimal = std::to_string(v);
    require(value.to_decimal() == decimal, "to_decimal");
    require(value.to_hex(1) == hex_of(v, 16), "to_hex, full");
    require(value.to_hex(0) == hex_of(v, 1), "to_hex");
    require(native(ksl_uint64_c(decimal.c_str())) == v, "decimal there and back");
    require(native(ksl_uint64_c(("x" + hex_of(v, 1)).c_str())) == v, "hexadecimal there and back");
    constexpr std::size_t room = 25;
    for (unsigned size = 0; size <= room; ++size) {
        std::string bytes(room, '#');
        value.to_decimal_r(bytes.data(), static_cast<int>(size));
        const std::size_t used = v == 0 ? std::min(size, 2u) : size;  // zero is always two bytes
        require(bytes == model_cut(decimal, room, used), "to_decimal_r cuts");
        bytes.assign(room, '#');
        value.to_hex_r(1, bytes.data(), size);
        require(bytes == model_cut(hex_of(v, 16), room, size), "to_hex_r cuts, full");
        bytes.assign(room, '#');
        value.to_hex_r(0, bytes.data(), size);
        require(bytes == model_cut(hex_of(v, 9), room, size), "to_hex_r cuts");
    }
}

void check_arithmetic(std::uint64_t a, std::uint64_t b) {
    const ksl_uint64_c x = halves(a), y = halves(b);
    ksl_uint64_c sum(x), difference(x), product(x), quotient(x), up(x), down(x);
    require(native(sum += y) == a + b, "sum");
    require(native(difference -= y) == a - b, "difference");
    require(native(product *= y) == a * b, "product");
    if (b != 0) require(native(quotient /= y) == a / b, "quotient");
    require(native(-x) == 0 - a, "negation");
    require(native(++up) == a + 1 && native(--down) == a - 1, "one up, one down");
    require(native(x.divide_by_10()) == a / 10, "divide_by_10");
    require(x.mod_10() == static_cast<int>(a % 10), "mod_10");
    require((x == y) == unsigned{a == b} && (x != y) == unsigned{a != b}, "equality");
    require((x < y) == unsigned{a < b} && (x <= y) == unsigned{a <= b}, "order");
    require((x > y) == unsigned{a > b} && (x >= y) == unsigned{a >= b}, "order");
}

void check_shifts(std::uint64_t v, int count) {
    const bool out = count >= 64 || count <= -64;
    ksl_uint64_c left = halves(v), right = halves(v);
    require(native(left <<= count) == (out         ? 0
                                       : count < 0 ? v >> -count
                                                   : v << count),
            "shift to the left");
    require(native(right >>= count) == (out         ? 0
                                        : count < 0 ? v << -count
                                                    : v >> count),
            "shift to the right");
}

}  // namespace

void uint64_parsing(std::string_view input) {
    Parameters parameters(input);
    const std::uint64_t a = parameters.number();
    const std::uint64_t b = parameters.number();
    const int count = static_cast<signed char>(parameters.byte());
    const std::string text = up_to_nul(parameters.rest());

    const ksl_uint64_c parsed(text.c_str());
    const Parsed expected = model_parse(text);
    require(native(parsed) == expected.value, "the value parsed");
    require(ksl_uint64_c::status() == expected.status, "the status of parsing");

    constexpr std::uint64_t low_half = 0xFFFFFFFF;
    const std::uint64_t shorter = b >> (count & 63);
    for (const std::uint64_t v : {a, shorter, a & low_half, a | low_half}) {
        check_arithmetic(v, b);
        check_arithmetic(v, shorter);
        check_arithmetic(v, v);
        check_shifts(v, count);
    }
    check_text(a);
    check_text(shorter);
}

}  // namespace util_fuzz
