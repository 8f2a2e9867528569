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
    using limits = std::numeric_limits<double>;
    std::vector<double> values = {0.0, -0.0, 0.15, -2.675, 1e15, 999999999999999.5, limits::max(),
                                  limits::denorm_min(), limits::min(), limits::infinity(), -limits::infinity(),
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

// Where plain_number_tenths gives tenths, plain_number_chars writes exactly
// their text; and it gives them for the sums the totals pass up, whatever
// their sign, apart from a rare sum too far from its tenths to be sure.
TEST(NumberShortcuts, PlainTenthsAreThePlainTextOfTheNumber) {
    std::mt19937_64 rng(17);
    const auto tenths_text = [](long long k) {
        const long long a = std::llabs(k);
        QString text = QString("%1%2").arg(k < 0 ? "-" : "").arg(a / 10);
        if (a % 10 != 0) text += QString(".%1").arg(a % 10);
        return text;
    };
    std::vector<double> values = {0.0, -0.0, 0.1, -0.1, 1.0, 10.0, 1e7, 99999999.9, 99999999.96, 1e8,
                                  std::nextafter(100.0, 0.0), std::nextafter(0.1, 1.0), 5e-324, 1e-16,
                                  std::nan(""), std::numeric_limits<double>::infinity()};
    // Just below and above each power of ten, where the 15th digit's unit changes.
    for (double p = 0.1; p < 1e9; p *= 10)
        for (double off : {1e-16, 4e-16, 1e-15, 3e-15, 1e-14, 1e-12})
            for (double sign : {1.0, -1.0}) values.insert(values.end(), {sign * p * (1 - off), sign * p * (1 + off)});
    std::vector<double> sums;  // as the totals pass them up, with cancellation as it comes
    for (int i = 0; i < 100000; ++i) {
        const long long a = (long long)(rng() % 2000000001) - 1000000000;
        sums.push_back(double(a) / 10.0 + double((long long)(rng() % 20001) - 10000) / 10.0);
        const double small = double((long long)(rng() % 20001) - 10000) / 10.0;
        sums.push_back(small + double((long long)(rng() % 2001) - 1000) / 10.0);
        values.push_back(double(a % 1000000) / 10.0 * (1 + 1e-15 * double(int(rng() % 41) - 20)));
    }
    int taken = 0;
    for (const auto* list : {&values, &sums})
        for (double x : *list) {
            long long k = 0;
            if (!plain_number_tenths(x, &k)) continue;
            taken += list == &sums;
            SCOPED_TRACE(x);
            EXPECT_EQ(tenths_text(k), QString::fromStdString(plain_number_chars(x)));
        }
    EXPECT_GT(taken, int(sums.size()) * 99 / 100);
    long long k = 0;
    for (double far : {99999999.96, 1e8, 0.05, 1e-16, 47.40000001})
        EXPECT_FALSE(plain_number_tenths(far, &k)) << far;
}
