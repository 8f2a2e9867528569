// The totals take two shortcuts past the texts of their numbers; over
// generated numbers each must give what the way through the text gives.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "util/legacy_number.h"

using namespace veldo;

// number_text_value(x) is Val(number_text(x)): the same 15 digits, read back.
TEST(NumberShortcuts, ValueOfTheNumberTextIsValOfTheText) {
    std::mt19937_64 rng(11);
    std::uniform_real_distribution<double> exponent(-330, 310);
    std::uniform_real_distribution<double> unit(-1, 1);
    std::vector<double> values = {0.0,
                                  -0.0,
                                  0.15,
                                  -2.675,
                                  1e15,
                                  999999999999999.5,
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::denorm_min(),
                                  std::numeric_limits<double>::min(),
                                  std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity(),
                                  std::nan("")};
    for (int i = 0; i < 20000; ++i) values.push_back(unit(rng) * std::pow(10.0, exponent(rng)));
    // Marks' shares: a mark over a total times a weight, as the totals work them.
    for (int i = 0; i < 20000; ++i)
        values.push_back(double(int(rng() % 2001) - 1000) / 10.0 / double(1 + rng() % 300) * double(1 + rng() % 300));
    for (double x : values) {
        SCOPED_TRACE(x);
        const double through_text = Val(number_text(x));
        EXPECT_EQ(std::signbit(number_text_value(x)), std::signbit(through_text));
        EXPECT_TRUE(number_text_value(x) == through_text || (std::isnan(x) && std::isnan(through_text)));
    }
}

// A total in whole tenths plus a share in whole tenths is set in the
// one-decimal mask as the sum of the tenths, below a thousand million: the
// double sum never lands near enough a half to round otherwise, and is never
// a negative nought.
TEST(NumberShortcuts, SumOfWholeTenthsKeepsItsTenthsInTheOneDecimalMask) {
    std::mt19937_64 rng(5);
    const long long limit = 1000000000LL;
    std::vector<std::pair<long long, long long>> pairs = {
        {0, 0}, {1, -1}, {-1, 1}, {5, -5}, {limit / 2, limit / 2 - 1}, {-(limit / 2), -(limit / 2) + 1},
        {3, 0}, {1, 2}, {limit - 2, 1}, {-(limit - 2), -1}};
    for (int i = 0; i < 50000; ++i) {
        const long long a = (long long)(rng() % std::uint64_t(limit)) - limit / 2;
        const long long b = (long long)(rng() % 20001) - 10000;  // a share is small beside a total
        pairs.emplace_back(a, b);
        pairs.emplace_back(b, (long long)(rng() % 2001) - 1000);
    }
    for (const auto& [a, b] : pairs) {
        const long long sum = a + b;
        if (sum >= limit || sum <= -limit) continue;
        SCOPED_TRACE(std::to_string(a) + " + " + std::to_string(b));
        const double value = double(a) / 10.0 + double(b) / 10.0;
        long long tenths = -1;
        ASSERT_TRUE(one_decimal_tenths(value, &tenths));
        EXPECT_EQ(tenths, std::llabs(sum));
        EXPECT_EQ(value < 0, sum < 0);
        const QString text = format_one_decimal(value);
        EXPECT_EQ(text, QString("%1%2.%3").arg(sum < 0 ? "-" : "").arg(std::llabs(sum) / 10).arg(std::llabs(sum) % 10));
    }
}
