// ksl_uint64_c against the native operators and the runtime's conversions.
#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "bench/harness.h"
#include "util/portable/portable.h"

using bench::keep;
using bench::Operation;

namespace {

constexpr std::size_t count = 512;

// Sizes as a storage client meets them: up to 2^50 bytes, every number of digits.
struct Numbers {
    Numbers() {
        std::mt19937_64 random(1);
        for (std::size_t i = 0; i < count; ++i) {
            a[i] = random() >> (14 + i % 50);
            b[i] = (random() >> (14 + (i * 7) % 50)) | 1;
            x[i] = {static_cast<util::ulong32>(a[i]), static_cast<util::ulong32>(a[i] >> 32)};
            y[i] = {static_cast<util::ulong32>(b[i]), static_cast<util::ulong32>(b[i] >> 32)};
            decimal[i] = x[i].to_decimal();
            hex[i] = x[i].to_hex(0);
        }
    }
    std::uint64_t a[count], b[count];
    ksl_uint64_c x[count], y[count];
    std::string decimal[count], hex[count];
};

// The native operators and the peers, called out of line as the library is.
[[gnu::noinline]] std::uint64_t add(const std::uint64_t& a, std::uint64_t b) {
    return a + b;
}
[[gnu::noinline]] std::uint64_t multiply(const std::uint64_t& a, std::uint64_t b) {
    return a * b;
}
[[gnu::noinline]] std::uint64_t divide(const std::uint64_t& a, std::uint64_t b) {
    return a / b;
}
[[gnu::noinline]] std::uint64_t shift(const std::uint64_t& a, int n) {
    return a << n;
}

// For each number one call; figures are for one number.
template <typename Call>
auto for_each(Call call) {
    return [call] {
        for (std::size_t i = 0; i < count; ++i)
            keep(call(i));
    };
}

void arithmetic(const Numbers& n) {
    run(Operation("64-bit value: a + b")
            .limit("native, out of line", for_each([&](auto i) { return add(n.a[i], n.b[i]); }))
            .library(for_each([&](auto i) { return n.x[i] + n.y[i]; }))
            .per(count));
    run(Operation("64-bit value: a * b")
            .limit("native, out of line",
                   for_each([&](auto i) { return multiply(n.a[i], n.b[i]); }))
            .library(for_each([&](auto i) { return n.x[i] * n.y[i]; }))
            .per(count));
    run(Operation("64-bit value: a / b")
            .limit("native, out of line", for_each([&](auto i) { return divide(n.a[i], n.b[i]); }))
            .library(for_each([&](auto i) { return n.x[i] / n.y[i]; }))
            .per(count));
    run(Operation("64-bit value: a << n")
            .limit("native, out of line",
                   for_each([&](auto i) { return shift(n.a[i], static_cast<int>(i & 63)); }))
            .library(for_each([&](auto i) { return n.x[i] << static_cast<int>(i & 63); }))
            .per(count));
}

template <int base>
[[gnu::noinline]] char to_chars(std::uint64_t v) {
    char text[24];
    *std::to_chars(text, text + sizeof text, v, base).ptr = '\0';
    return text[0];
}

[[gnu::noinline]] char format_int(std::uint64_t v) {
    return *fmt::format_int(v).c_str();
}

template <int base>
[[gnu::noinline]] std::uint64_t from_chars(const std::string& text) {
    std::uint64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, base);
    return value;
}

void texts(const Numbers& n) {
    run(Operation("64-bit value: to_decimal")
            .limit("std::to_chars", for_each([&](auto i) { return to_chars<10>(n.a[i]); }))
            .library(for_each([&](auto i) { return *n.x[i].to_decimal(); }))
            .peer("fmt::format_int", for_each([&](auto i) { return format_int(n.a[i]); }))
            .per(count));
    run(Operation("64-bit value: to_hex(0)")
            .limit("std::to_chars", for_each([&](auto i) { return to_chars<16>(n.a[i]); }))
            .library(for_each([&](auto i) { return *n.x[i].to_hex(0); }))
            .per(count));
}

template <int base>
void parsing(const char* name, const std::string* texts) {
    Operation operation(name);
    operation.limit("std::from_chars", for_each([&](auto i) { return from_chars<base>(texts[i]); }))
        .library(for_each([&](auto i) { return ksl_uint64_c(texts[i].c_str()); }))
        .peer("strtoull",
              for_each([&](auto i) { return std::strtoull(texts[i].c_str(), nullptr, base); }))
        .per(count);
    run(operation);
}

const bench::Section section("5 64-bit values", [] {
    const Numbers numbers;
    arithmetic(numbers);
    texts(numbers);
    parsing<10>("64-bit value from decimal text", numbers.decimal);
    parsing<16>("64-bit value from hexadecimal text", numbers.hex);
});

}  // namespace
