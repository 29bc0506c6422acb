#include "util/portable/ksl_uint64.h"
#include "support/test.h"

#include <atomic>
#include <climits>
#include <cmath>
#include <limits>
#include <thread>

namespace {

std::uint64_t native(ksl_uint64_c v) {
    return std::uint64_t{v.hi()} << 32 | v.lo();
}

constexpr std::uint64_t max = std::numeric_limits<std::uint64_t>::max();

TEST(KslUint64Test, ConstructsFromEveryKindOfLiteral) {
    constexpr double two_to_63 = 9223372036854775808.0;
    const struct {
        ksl_uint64_c value;
        std::uint64_t expected;
    } cases[] = {{u_hyper{1, 5}, 4294967301},   {-1.0, 0xFFFFFFFF},
                 {4294967301.9, 4294967301},    {-HUGE_VAL, 0},
                 {1e19, 0x8AC7230400000000},    {std::nan(""), 0},
                 {two_to_63, max / 2 + 1},      {-2L, max - 1},
                 {-two_to_63, max / 2 + 1},     {-1, max},
                 {INT_MIN, 0xFFFFFFFF80000000}, {max, max},
                 {4000000000u, 4000000000},     {4000000000ul, 4000000000},
                 {LLONG_MIN, max / 2 + 1}};
    for (const auto& c : cases)
        EXPECT_EQ(native(c.value), c.expected) << &c - cases;
}

TEST(KslUint64Test, HoldsTheUpperHalfFirst) {
    ksl_uint64_c v(5, 1);
    EXPECT_EQ(native(v), 4294967301);
    v.high(7);
    v.low(9);
    util::ulong32 halves[2], stored[2];
    v.value(&halves[0], &halves[1]);
    std::memcpy(stored, &v, sizeof v);
    for (const auto& both : {halves, stored})
        EXPECT_EQ(util_test::said(both[0], both[1]), (util_test::Words{"7", "9"}));
}

TEST(KslUint64Test, StatusIsResetByExactlyTheListedOperations) {
    const ksl_uint64_c a(70000, 3), b(7, 0), zero(0);
    ksl_uint64_c c(a);
    char buf[32];
    const std::function<void()> resetting[] = {[&] { ksl_uint64_c(1, 2); },
                                               [&] { ksl_uint64_c(1); },
                                               [&] { ksl_uint64_c(nullptr); },
                                               [&] { ++c; },
                                               [&] { --c; },
                                               [&] { (void)-a; },
                                               [&] { a.mod_10(); },
                                               [&] { zero.to_hex(0); },
                                               [&] { zero.to_decimal(); },
                                               [&] { zero.to_decimal_r(buf, sizeof buf); },
                                               [&] { c /= b; },
                                               [&] { (void)(a >> 64); },
                                               [&] { c <<= INT_MIN; }};
    for (const auto& operation : resetting) {
        ksl_uint64_c("not a number");
        operation();
        EXPECT_EQ(ksl_uint64_c::status(), 0) << "operation " << &operation - resetting;
    }
    EXPECT_EQ(native(c), 0u);
    EXPECT_EQ(native(ksl_uint64_c(nullptr)), 0u);

    ksl_uint64_c("not a number");
    ksl_uint64_c(), ksl_uint64_c(1.5), ksl_uint64_c(u_hyper{1, 2});
    c = a, c.high(1), c.low(2), c += b, c -= b, c *= b;
    (void)(a << 63), (void)(a >> -63), c <<= 0;
    (void)((a == b) + (a != b) + (a < b) + (a <= b) + (a > b) + (a >= b));
    a.divide_by_10(), a.to_hex(1), a.to_hex_r(0, buf, sizeof buf);
    EXPECT_EQ(ksl_uint64_c::status(), 4);
}

TEST(KslUint64DeathTest, DivisionByZeroAborts) {
    const ksl_uint64_c one(1), zero(0);
#ifdef _WIN32
    EXPECT_EXIT((void)(one / zero), testing::ExitedWithCode(3), "");
#else
    EXPECT_EXIT((void)(one / zero), testing::KilledBySignal(SIGABRT), "");
#endif
}

TEST(KslUint64Test, WritesIntoTheLibrarysOwnBuffersOrTheCallers) {
    const char* first = ksl_uint64_c(12345).to_decimal();
    EXPECT_STREQ(ksl_uint64_c(0).to_decimal(), "0");
    EXPECT_STREQ(first, "12345") << "zero has a place of its own";
    ksl_uint64_c(67890).to_decimal();
    EXPECT_STREQ(first, "67890");
    const char* hex = ksl_uint64_c(255).to_hex(1);
    EXPECT_EQ(ksl_uint64_c(0).to_hex(0), hex + 15);

    char text[] = "#";
    EXPECT_EQ(ksl_uint64_c(5).to_decimal_r(text, -1), text);
    EXPECT_STREQ(text, "#");
    EXPECT_EQ(ksl_uint64_c(5).to_decimal_r(nullptr, 5), nullptr);
    EXPECT_EQ(ksl_uint64_c(5).to_hex_r(1, nullptr, 5), nullptr);
}

// For the thread sanitizer: all of them set the one status word.
TEST(KslUint64Test, ThreadsReckonAndReadAtTheSameTime) {
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&right] {
            ksl_uint64_c sum(0);
            for (ksl_uint64_c n("0x10"); n != ksl_uint64_c("1016"); ++n)
                sum += ((n << 64) + n) / n;
            right += sum == ksl_uint64_c(1000) && ksl_uint64_c::status() == 0;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, 8);
}

}  // namespace
