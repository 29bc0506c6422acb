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
Parsed plain_parse(const std::string& text) {
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

void check_text(std::uint64_t v) {
    const ksl_uint64_c value = halves(v);
    require(value.to_decimal() == std::to_string(v), "to_decimal");
    require(native(ksl_uint64_c(value.to_decimal())) == v, "decimal there and back");
    require(native(ksl_uint64_c(("x" + std::string(value.to_hex(0))).c_str())) == v,
            "hexadecimal there and back");
    for (unsigned size = 1; size < 24; ++size) {
        char buffer[25];
        std::memset(buffer, '#', sizeof buffer);
        value.to_decimal_r(buffer, static_cast<int>(size));
        require(std::to_string(v).substr(0, size - 1) == buffer, "to_decimal_r cuts");
        require(buffer[size] == '#', "to_decimal_r stays inside");
        value.to_hex_r(1, buffer, size);
        require(std::string(value.to_hex(1)).substr(0, size - 1) == buffer, "to_hex_r cuts");
        require(buffer[size] == '#', "to_hex_r stays inside");
    }
}

}  // namespace

void uint64_parsing(std::string_view input) {
    Parameters parameters(input);
    const std::uint64_t a = parameters.number();
    const std::uint64_t b = parameters.number();
    const int count = static_cast<signed char>(parameters.byte());
    const std::string text = up_to_nul(parameters.rest());

    const ksl_uint64_c parsed(text.c_str());
    const Parsed expected = plain_parse(text);
    require(native(parsed) == expected.value, "the value parsed");
    require(ksl_uint64_c::status() == expected.status, "the status of parsing");

    check_text(a);
    require(native(halves(a) + halves(b)) == a + b, "sum");
    require(native(halves(a) - halves(b)) == a - b, "difference");
    require(native(halves(a) * halves(b)) == a * b, "product");
    if (b != 0) require(native(halves(a) / halves(b)) == a / b, "quotient");
    const bool out = count >= 64 || count <= -64;
    require(native(halves(a) << count) == (out         ? 0
                                           : count < 0 ? a >> -count
                                                       : a << count),
            "shift");
    require(native(halves(a) >> count) == (out         ? 0
                                           : count < 0 ? a << -count
                                                       : a >> count),
            "shift");
    require((halves(a) < halves(b)) == (a < b) && (halves(a) == halves(b)) == (a == b), "order");
}

}  // namespace util_fuzz
