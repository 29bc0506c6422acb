#include "util/portable/ksl_uint64.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

std::uint64_t native(ksl_uint64_c v) {
    return std::uint64_t{v.hi()} << 32 | v.lo();
}

ksl_uint64_c boxed(std::uint64_t v) {
    return ksl_uint64_c(static_cast<util::ulong32>(v), static_cast<util::ulong32>(v >> 32));
}

constexpr std::uint64_t max = std::numeric_limits<std::uint64_t>::max();

TEST(KslUint64Test, ConstructsFromEveryKindOfLiteral) {
    constexpr double two_to_63 = 9223372036854775808.0;
    const struct {
        ksl_uint64_c value;
        std::uint64_t expected;
    } cases[] = {
        {ksl_uint64_c(5, 1), 4294967301},
        {0, 0},
        {-1, max},
        {7L, 7},
        {-2L, max - 1},
        {INT_MIN, 0xFFFFFFFF80000000},
        {u_hyper{1, 5}, 4294967301},
        {-1.0, 0xFFFFFFFF},
        {4294967301.9, 4294967301},
        {1e19, 0x8AC7230400000000},
        {two_to_63, max / 2 + 1},
        {-two_to_63, max / 2 + 1},
        {-HUGE_VAL, 0},
        {std::nan(""), 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(native(c.value), c.expected) << &c - cases;
}

TEST(KslUint64Test, HoldsTheUpperHalfFirst) {
    ksl_uint64_c v(5, 1);
    util::ulong32 stored[2], h, l;
    std::memcpy(stored, &v, sizeof v);
    EXPECT_EQ(stored[0], 1u);
    EXPECT_EQ(stored[1], 5u);
    v.high(7);
    v.low(9);
    v.value(&h, &l);
    EXPECT_EQ(h, 7u);
    EXPECT_EQ(l, 9u);
}

TEST(KslUint64Test, ReadsText) {
    const struct {
        const char* text;
        std::uint64_t value;
        int status;
    } cases[] = {
        {nullptr, 0, 0},
        {"", 0, 0},
        {"18446744073709551615", max, 0},
        {"18446744073709551616", 0, 0},
        {"000000000000000000001", 0, 1},
        {"x", 0, 0},
        {"x10", 16, 0},
        {"0x1f", 31, 0},
        {"1F", 31, 0},
        {"123456789a", 0x123456789a, 0},
        {"0x00000000000000001", 0, 1},
        {"0000000000000000a", 0, 1},
        {"0x1g", 0, 2},
        {"1g", 0, 4},
        {"00x1", 0, 4},
        {"-1", 0, 4},
        {" 1", 0, 4},
        {"\xE9", 0, 4},
    };
    for (const auto& c : cases) {
        const ksl_uint64_c value(c.text);
        EXPECT_EQ(ksl_uint64_c::status(), c.status) << c.text;
        EXPECT_EQ(native(value), c.value) << c.text;
    }
}

TEST(KslUint64Test, StatusIsResetByExactlyTheListedOperations) {
    const ksl_uint64_c a(70000, 3), b(7, 0), zero(0);
    ksl_uint64_c c(a);
    char buf[32];
    const std::function<void()> resetting[] = {
        [&] { ksl_uint64_c(1, 2); },
        [&] { ksl_uint64_c(1); },
        [&] { ksl_uint64_c(1L); },
        [&] { ksl_uint64_c(nullptr); },
        [&] { ++c; },
        [&] { --c; },
        [&] { (void)-a; },
        [&] { a.mod_10(); },
        [&] { zero.to_hex(0); },
        [&] { zero.to_decimal(); },
        [&] { zero.to_decimal_r(buf, sizeof buf); },

        [&] { c /= b; },
        [&] { (void)(a << 64); },
        [&] { (void)(a >> 64); },
        [&] { c <<= -64; },
    };
    for (const auto& operation : resetting) {
        ksl_uint64_c("not a number");
        ASSERT_EQ(ksl_uint64_c::status(), 4);
        operation();
        EXPECT_EQ(ksl_uint64_c::status(), 0) << "operation " << &operation - resetting;
    }

    ksl_uint64_c("not a number");
    ksl_uint64_c(), ksl_uint64_c(1.5), ksl_uint64_c(u_hyper{1, 2});
    c = a, c.high(1), c.low(2), c += b, c -= b, c *= b;
    (void)(a << 63), (void)(a >> -63), c <<= 0;
    (void)((a == b) + (a != b) + (a < b) + (a <= b) + (a > b) + (a >= b));
    a.divide_by_10(), a.to_hex(1), a.to_hex_r(0, buf, sizeof buf);
    EXPECT_EQ(ksl_uint64_c::status(), 4);
}

// Pairs of all edge halves, then random ones of mixed sizes.
void for_each_pair(const std::function<void(std::uint64_t, std::uint64_t)>& check) {
    const std::uint64_t halves[] = {0, 1, 9, 10, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    std::vector<std::uint64_t> edges;
    for (const auto high : halves) {
        for (const auto low : halves)
            edges.push_back(high << 32 | low);
    }
    for (const auto a : edges) {
        for (const auto b : edges)
            check(a, b);
    }
    std::mt19937_64 random(20240607);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t a = random() >> random() % 64;
        check(a, random() >> random() % 64);
    }
}

std::uint64_t shifted_left(std::uint64_t v, std::int64_t n) {
    if (n <= -64 || n >= 64) return 0;
    return n < 0 ? v >> -n : v << n;
}

TEST(KslUint64Test, ComputesAsTheNativeInteger) {
    for_each_pair([](std::uint64_t a, std::uint64_t b) {
        SCOPED_TRACE(testing::Message() << a << " and " << b);
        const ksl_uint64_c x = boxed(a), y = boxed(b);
        ksl_uint64_c sum(x), difference(x), product(x), up(x), down(x);
        ASSERT_EQ(native(sum += y), a + b);
        ASSERT_EQ(native(difference -= y), a - b);
        ASSERT_EQ(native(product *= y), a * b);
        ASSERT_EQ(native(-x), 0 - a);
        ASSERT_EQ(native(++up), a + 1);
        ASSERT_EQ(native(--down), a - 1);
        if (b != 0) {
            ksl_uint64_c quotient(x);
            ASSERT_EQ(native(quotient /= y), a / b);
        }
        for (const int n : {static_cast<int>(b), ~static_cast<int>(b)}) {
            ksl_uint64_c left(x), right(x);
            ASSERT_EQ(native(left <<= n), shifted_left(a, n)) << n;
            ASSERT_EQ(native(right >>= n), shifted_left(a, -std::int64_t{n})) << n;
        }
        ASSERT_EQ(native(x.divide_by_10()), a / 10);
        ASSERT_EQ(x.mod_10(), int(a % 10));
        ASSERT_EQ(x == y, unsigned(a == b));
        ASSERT_EQ(x != y, unsigned(a != b));
        ASSERT_EQ(x < y, unsigned(a < b));
        ASSERT_EQ(x <= y, unsigned(a <= b));
        ASSERT_EQ(x > y, unsigned(a > b));
        ASSERT_EQ(x >= y, unsigned(a >= b));
    });
}

TEST(KslUint64DeathTest, DivisionByZeroAborts) {
    const ksl_uint64_c one(1), zero(0);
#ifdef _WIN32
    EXPECT_EXIT((void)(one / zero), testing::ExitedWithCode(3), "");
#else
    EXPECT_EXIT((void)(one / zero), testing::KilledBySignal(SIGABRT), "");
#endif
}

std::string hex_of(std::uint64_t v) {
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4)
        text += "0123456789abcdef"[v >> shift & 15];
    return text;
}

std::string without_zeros(const std::string& text, std::size_t keep) {
    return text.substr(std::min(text.find_first_not_of('0'), text.size() - keep));
}

TEST(KslUint64Test, WritesTextThatReadsBack) {
    for_each_pair([](std::uint64_t a, std::uint64_t) {
        const ksl_uint64_c v = boxed(a);
        ASSERT_EQ(v.to_decimal(), std::to_string(a));
        ASSERT_EQ(v.to_hex(1), hex_of(a));
        ASSERT_EQ(v.to_hex(0), without_zeros(hex_of(a), 1));
        ASSERT_EQ(native(ksl_uint64_c(v.to_decimal())), a);
        ASSERT_EQ(native(ksl_uint64_c(("0x" + hex_of(a)).c_str())), a);
    });
}

TEST(KslUint64Test, KeepsResultsInTheLibrarysOwnBuffers) {
    const char* first = ksl_uint64_c(12345).to_decimal();
    EXPECT_STREQ(ksl_uint64_c(0).to_decimal(), "0");
    EXPECT_STREQ(first, "12345") << "zero has a place of its own";
    ksl_uint64_c(67890).to_decimal();
    EXPECT_STREQ(first, "67890");
    const char* hex = ksl_uint64_c(255).to_hex(1);
    EXPECT_EQ(ksl_uint64_c(0).to_hex(0), hex + 15);
}

// What the caller's bytes hold afterwards, for every size: the text cut short, a NUL in the last
// byte of the size given, and nothing else.
TEST(KslUint64Test, CutsTextToTheBufferGiven) {
    constexpr int room = 40;
    const auto expected = [](const std::string& text, int size) {
        std::string bytes(room, '#');
        if (size < 1) return bytes;
        std::strncpy(&bytes[0], text.c_str(), std::min<std::size_t>(size - 1, text.size() + 1));
        bytes[size - 1] = '\0';
        return bytes;
    };
    for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{12345}, max - 5, max >> 28}) {
        const ksl_uint64_c v = boxed(value);
        for (int size = 0; size <= room; ++size) {
            SCOPED_TRACE(testing::Message() << value << " into " << size);
            std::string decimal(room, '#'), hex(decimal), full_hex(decimal);
            EXPECT_EQ(v.to_decimal_r(&decimal[0], size), &decimal[0]);
            EXPECT_EQ(v.to_hex_r(0, &hex[0], unsigned(size)), &hex[0]);
            EXPECT_EQ(v.to_hex_r(1, &full_hex[0], unsigned(size)), &full_hex[0]);
            EXPECT_EQ(decimal, expected(std::to_string(value), value ? size : std::min(size, 2)));
            EXPECT_EQ(hex, expected(without_zeros(hex_of(value), 9), size));
            EXPECT_EQ(full_hex, expected(hex_of(value), size));
        }
    }
    char kept = '#';
    EXPECT_EQ(ksl_uint64_c(5).to_decimal_r(&kept, -1), &kept);
    EXPECT_EQ(kept, '#');
}

}  // namespace
