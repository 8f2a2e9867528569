#include "util/legacy_number.h"

#include <QLocale>

#include <gtest/gtest.h>

#include "tests/support/store_util_helpers.h"

#include <cmath>
#include <limits>
#include <random>

using namespace veldo;

// Blanks, tabs and line ends in front are skipped; the number stops at the
// first misfit: no exponent, no comma decimal; no number gives zero.
TEST(LegacyNumberVal, ReadsTheLeadingNumberAndStopsAtTheFirstMisfit) {
    const std::pair<const char*, double> rows[] = {
        {"  -3.5abc", -3.5}, {"12.5", 12.5}, {"7 8", 7.0},     {"1.2.3", 1.2},   {"+4", 4.0},  {"5.", 5.0},
        {".5", 0.5},         {"-.25", -0.25}, {"\t\r\n 42", 42.0}, {"1e3", 1.0}, {"12,5", 12.0},
        {"abc", 0.0},        {"", 0.0},       {"A", 0.0},       {".", 0.0},      {"-", 0.0},   {"- 3", 0.0},
        {"0.1000000000000000000000000001", 0.1},
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(Val(QString::fromLatin1(text)), expected) << text;
    EXPECT_FALSE(std::signbit(Val(QStringLiteral("-0.0"))));  // a plain zero
    // Long digit runs never fail.
    EXPECT_EQ(Val(QStringLiteral("1") + QString(400, QLatin1Char('0'))), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Val(QStringLiteral("0.") + QString(400, QLatin1Char('0')) + QStringLiteral("1")), 0.0);
}

// Short decimals take a quick road; it must land on the same double as a
// correctly rounded reader.
TEST(LegacyNumberVal, ReadsEveryDecimalToTheCorrectlyRoundedDouble) {
    std::mt19937_64 rng(7);
    for (int i = 0; i < 50000; ++i) {
        const int whole = int(rng() % 8), decimals = int(rng() % 18);
        QString text;
        for (int k = 0; k < whole; ++k) text += QChar('0' + int(rng() % 10));
        if (decimals) text += '.';
        for (int k = 0; k < decimals; ++k) text += QChar('0' + int(rng() % 10));
        if (text.isEmpty() || text == ".") continue;
        bool ok = false;
        const double expected = text.toDouble(&ok);
        ASSERT_TRUE(ok) << text.toStdString();
        ASSERT_EQ(Val(text), expected) << text.toStdString();
        ASSERT_EQ(Val("-" + text), expected == 0 ? 0.0 : -expected) << text.toStdString();
    }
}

TEST(LegacyNumberIsNumeric, TakesWholeNumbersWithBlanksAroundAndExponentsOnly) {
    for (const char* yes : {" 12.5 ", "-.5", "1E3", "2d-2"}) EXPECT_TRUE(IsNumeric(QString::fromLatin1(yes))) << yes;
    for (const char* no : {"", "  ", "12a", ".", "1e", "1,5", "A"})
        EXPECT_FALSE(IsNumeric(QString::fromLatin1(no))) << no;
    double v = 0;
    ASSERT_TRUE(parse_numeric(QStringLiteral("2.5e2"), &v));
    EXPECT_DOUBLE_EQ(v, 250.0);
}

// Half away from zero after a 15-digit step; no thousands separator; a number
// wider than its placeholders widens; "0" before the point always shows a
// whole digit, "#" alone drops it below one; a leading blank stays.
TEST(LegacyNumberMask, FormatsAsTheMaskSays) {
    const struct {
        double value;
        const char* mask;
        const char* expected;
        const char* why = "";
    } rows[] = {
        {0, "##0.0", "0.0"},     {0.5, "##0.0", "0.5"},  {100, "##0.0", "100.0"},  {7, "##0.0", "7.0"},
        {0.5, "###.0", ".5"},    {0, "###.0", ".0"},     {0.04, "###.0", ".0"},    {47.142857, "###.0", "47.1"},
        {-0.5, "###.0", "-.5"},
        {1234567.25, "##0.0", "1234567.3", "widens past the placeholders"}, {12345.6, " ###0.0", " 12345.6"},
        {45.25, " ###0.0", " 45.3", "the heading mask's blank stays"}, {0, " ###0.0", " 0.0"},
        {100, " ###0.0", " 100.0"},
        {1234.56, "####0.0", "1234.6", "total and list masks"}, {0.25, "####0.0", "0.3"},
        {512, "######.0", "512.0"}, {0.5, "######.0", ".5"},  {3, "####.0", "3.0"},
        {5, "000", "005", "the general rule"}, {2.5, "0", "3"}, {1.5, "0.0#", "1.5"}, {1.25, "0.0#", "1.25"},
        {12.5, ".00", "12.50"},  {0.125, "0.00", "0.13"},
        {0.15, "##0.0", "0.2", "just below the half in binary: the 15-digit step makes it go up"},
        {2.25, "##0.0", "2.3", "at the half"}, {-2.25, "##0.0", "-2.3"}, {0.35, "##0.0", "0.4"}, {1.05, "##0.0", "1.1"},
        {9.96, "##0.0", "10.0"}, {99.95, "##0.0", "100.0"}, {0.1 + 0.2, "##0.0", "0.3"}, {-3.5, "##0.0", "-3.5"},
        {21.0 / 30.0 * 40.0, "##0.0", "28.0"}, {1234.5, "##0.0", "1234.5", "no thousands separator"},
        {-0.04, "##0.0", "-0.0", "a negative value below the half keeps its minus"},
        {-0.0, "##0.0", "0.0", "negative zero has none"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(format_mask(r.value, QString::fromLatin1(r.mask)), QString::fromLatin1(r.expected)) << r.why;
}

// The one-decimal mask of the marks, "##0.0", takes a short road away from
// the halves; it must give what the general mask gives, halves and
// near-halves included.
TEST(LegacyNumberMask, OneDecimalAgreesWithTheGeneralMask) {
    std::mt19937_64 rng(3);
    std::uniform_real_distribution<double> marks(-150.0, 150.0);
    const QString mask = QStringLiteral("##0.0");
    for (int i = 0; i < 100000; ++i) {
        double v = marks(rng);
        if (i % 3 == 0) v = std::round(v * 100) / 100;                 // two decimals: many halves
        if (i % 3 == 1) v = (std::round(v * 20) + 1e-12 * (i % 7 - 3)) / 20;  // a hair off a half
        ASSERT_EQ(format_one_decimal(v), format_mask(v, mask)) << v;
        // What the text reads back as, had without the text.
        ASSERT_EQ(one_decimal_value(v), Val(format_one_decimal(v))) << v;
    }
    // Hundredths of every size up to a hundred million, past where the
    // short road for them stops.
    std::uniform_int_distribution<long long> hundredths(-20'000'000'000LL, 20'000'000'000LL);
    for (int i = 0; i < 100000; ++i) {
        const double v = double(hundredths(rng) / (i % 2 ? 1 : 1000)) / 100.0;
        ASSERT_EQ(format_one_decimal(v), format_mask(v, mask)) << v;
    }
    for (double v : {1e8 + 0.05, 123456789.25, 99999999.95, 12345678.25, -9999999.85, 1e12, -0.0, 0.0, 0.05, -0.05})
    {
        EXPECT_EQ(format_one_decimal(v), format_mask(v, mask)) << v;
        EXPECT_EQ(one_decimal_value(v), Val(format_one_decimal(v))) << v;
        EXPECT_FALSE(std::signbit(one_decimal_value(v)) && one_decimal_value(v) == 0) << v;  // as Val: no -0
    }
}

TEST(LegacyNumberMask, LocaleDoesNotChangeAByte) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    veldo::testing::CommaLocale comma;
    ASSERT_TRUE(comma.active) << "no comma locale, and localedef could not make one";
    EXPECT_EQ((QStringList{format_one_decimal(12.25), number_text(0.5), Currency::from_double(1.5).text()}),
              (QStringList{"12.3", " 0.5", "1.5"}));
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("12.5")), 12.5);
    QLocale::setDefault(before);
}

// Ties go to the even digit only where the double lies exactly halfway; the
// export and the averages work on the double as it stands. Huge and
// non-finite values are left alone.
TEST(LegacyNumberRound, TiesToEvenOnTheExactValueOfTheDouble) {
    const std::tuple<double, int, double, const char*> rows[] = {  // value, decimals, rounded, why
        {12.25, 1, 12.2, "exactly halfway: the even 2"}, {0.25, 1, 0.2, "exactly halfway"},
        {2.5, 0, 2.0, "exactly halfway"},                {3.5, 0, 4.0, "exactly halfway: the even 4"},
        {-2.5, 0, -2.0, "exactly halfway, negative"},    {-3.5, 0, -4.0, "exactly halfway, negative: the even -4"},
        {7.0 / 40.0 * 50.0, 1, 8.8, "8.75 exactly: the even 8"},
        {26.1 / 40.0 * 100.0, 1, 65.3, "65.25000000000001 lies above the half"},
        {0.35, 1, 0.3, "0.34999999999999997 lies below the half"},
        {1.05, 1, 1.1, "1.0500000000000000444 lies above the half"},
        {47.142857, 1, 47.1, "no tie"}, {1.23456, 4, 1.2346, "no tie"}, {-0.04, 1, 0.0, "no negative zero"},
        {1e300, 1, 1e300, "huge"},      {4503599627370497.0, 0, 4503599627370497.0, "past the last fraction bit"},
    };
    for (const auto& [value, decimals, rounded, why] : rows) EXPECT_EQ(Round(value, decimals), rounded) << why;
    EXPECT_FALSE(std::signbit(Round(-0.04, 1)));
    EXPECT_TRUE(std::isnan(Round(std::nan(""), 1)));
    EXPECT_EQ(plain_number_text(Round(26.1 / 40.0 * 100.0, 1)), QStringLiteral("65.3"));
}

TEST(LegacyNumberText, PlainDecimalWithALeadingBlankUnlessNegative) {
    const std::tuple<double, int, const char*> rows[] = {  // value, significant digits, text
        {100, 15, " 100"}, {0.5, 15, " 0.5"}, {-2, 15, "-2"}, {0, 15, " 0"}, {0.1 + 0.2, 15, " 0.3"},
        {1.0 / 3.0, 15, " 0.333333333333333"}, {2.0 / 3.0, 15, " 0.666666666666667"},
        {double(1.0f / 3.0f), 7, " 0.3333333"}, {double(0.1f), 7, " 0.1"}, {double(123.45f), 7, " 123.45"},
        {123456789012345.0, 15, " 123456789012345"},
        // Never an exponent: Val must read the text back whole.
        {1e15, 15, " 1000000000000000"}, {1e20, 15, " 100000000000000000000"},
        {0.0001, 15, " 0.0001"}, {0.00001, 15, " 0.00001"}, {-1.5e-7, 15, "-0.00000015"},
        {-5.9211894646675e-17, 15, "-0.000000000000000059211894646675"}, {double(12345678.0f), 7, " 12345680"},
    };
    for (const auto& [value, significant, text] : rows) {
        EXPECT_EQ(number_text(value, significant), QString::fromLatin1(text));
        EXPECT_EQ(plain_number_text(value, significant), QString::fromLatin1(text).trimmed());
    }
}

// Whatever is taken through text comes back the same to 15 digits.
TEST(LegacyNumberText, ValReadsNumberTextBackToFifteenDigits) {
    std::mt19937_64 rng(21);
    std::uniform_real_distribution<double> exponent(-20.0, 20.0), mantissa(1.0, 10.0);
    for (int i = 0; i < 20000; ++i) {
        const double magnitude = mantissa(rng) * std::pow(10.0, std::floor(exponent(rng)));
        const double x = (i % 2) ? -magnitude : magnitude;
        const double back = Val(number_text(x));
        ASSERT_LE(std::fabs(back - x), std::fabs(x) * 1e-14) << number_text(x).toStdString();
    }
}

// Four decimals, ties to even; text() drops trailing zeros, fixed4() keeps
// them; a value too big saturates instead of overflowing.
TEST(LegacyNumberCurrency, KeepsFourDecimalsTiesToEven) {
    // Just below the half; exact halves, even below, above, below; a hair above; negative; too big; no number.
    const QList<double> values{12.34565, 1.03125, 1.09375, 47.53125, 47.531250000000007, -1.5, 1e300, std::nan("")};
    QList<std::int64_t> kept;
    for (double v : values) kept << Currency::from_double(v).ten_thousandths;
    EXPECT_EQ(kept, (QList<std::int64_t>{123456, 10312, 10938, 475312, 475313, -15000,
                                         std::numeric_limits<std::int64_t>::max(), 0}));
    EXPECT_DOUBLE_EQ(Currency::from_double(70.0).to_double(), 70.0);
    EXPECT_LT(Currency::from_double(-1e300).ten_thousandths, 0);

    const std::tuple<double, const char*, const char*> rows[] = {  // value, text(), fixed4()
        {12.3456, "12.3456", "12.3456"}, {12.34, "12.34", "12.3400"}, {-0.5, "-0.5", "-0.5000"},
        {0, "0", "0.0000"},               {70, "70", "70.0000"}};
    for (const auto& [value, text, fixed4] : rows) {
        EXPECT_EQ(Currency::from_double(value).text(), QString::fromLatin1(text));
        EXPECT_EQ(Currency::from_double(value).fixed4(), QString::fromLatin1(fixed4));
    }
}
