#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "util/text/byte_string.h"

using namespace std::string_literals;

namespace {

// -1, 0 or 1; fails when the three verdicts do not agree on one order.
int order(const String& a, const String& b) {
    EXPECT_EQ(a.isLessThanVersion(b) + a.isEqualToVersion(b) + a.isGreaterThanVersion(b), 1);
    return a.isGreaterThanVersion(b) - a.isLessThanVersion(b);
}

TEST(VersionOrderTest, ComparesComponentsAsNumbers) {
    const struct {
        const char *a, *b;
        int order;
    } cases[] = {{"7.1", "7.0.9", 1},   {"7.0.9", "7.1", -1}, {"10.0", "9.9", 1},
                 {"1.0.0", "1", 0},     {"1.0.1", "1", 1},    {"6.2.SP3", "V6.2.3-beta", 0},
                 {"beta", "", 0},       {"", "1", -1},        {"...", "", 0},
                 {".1..2.", "1.2", 0},  {"-3", "3", 0},       {"2147483648", "1", -1},
                 {"4294967297", "1", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(order(c.a, c.b), c.order) << c.a << " and " << c.b;
}

// The described rule with its two lists, as a model.
int order_as_described(const String& a, const String& b) {
    const auto left = a.split(".", true), right = b.split(".", true);
    const auto value = [](const std::vector<String>& list, std::size_t i) {
        if (i >= list.size()) return 0;
        const auto digit = list[i].str().find_first_of("0123456789");
        return std::atoi(list[i].c_str() + (digit == std::string::npos ? 0 : digit));
    };
    for (std::size_t i = 0; i < left.size() || i < right.size(); ++i) {
        if (value(left, i) != value(right, i)) return value(left, i) > value(right, i) ? 1 : -1;
    }
    return 0;
}

TEST(VersionOrderTest, AgreesWithTheDescribedRuleOnRandomTexts) {
    const unsigned seed = 20240610;
    std::mt19937 random(seed);
    const auto random_version = [&] {
        std::string text(random() % 9, ' ');
        for (char& c : text)
            c = "0012...-v \0"[random() % 11];
        return String(text);
    };
    for (int round = 0; round < 20000; ++round) {
        const String a = random_version(), b = random_version();
        ASSERT_EQ(order(a, b), order_as_described(a, b))
            << "seed " << seed << " round " << round << ": " << testing::PrintToString(a.str())
            << " and " << testing::PrintToString(b.str());
    }
}

}  // namespace
