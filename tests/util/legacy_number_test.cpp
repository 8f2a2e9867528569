#include "util/legacy_number.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

using namespace veldo;

// ---- Val: the leading number of a text -------------------------------------

TEST(LegacyNumberVal, ReadsTheLeadingNumberAndStopsAtTheFirstMisfit) {
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("  -3.5abc")), -3.5);
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("12.5")), 12.5);
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("7 8")), 7.0);
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("1.2.3")), 1.2);
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("+4")), 4.0);
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("5.")), 5.0);
}

TEST(LegacyNumberVal, AcceptsAPointWithoutWholeDigits) {
    EXPECT_DOUBLE_EQ(Val(QStringLiteral(".5")), 0.5);
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("-.25")), -0.25);
}

TEST(LegacyNumberVal, SkipsBlanksTabsAndLineEndsInFront) {
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("\t\r\n 42")), 42.0);
}

TEST(LegacyNumberVal, GivesZeroWhereNoNumberStarts) {
    EXPECT_EQ(Val(QStringLiteral("abc")), 0.0);
    EXPECT_EQ(Val(QString()), 0.0);
    EXPECT_EQ(Val(QStringLiteral("A")), 0.0);
    EXPECT_EQ(Val(QStringLiteral(".")), 0.0);
    EXPECT_EQ(Val(QStringLiteral("-")), 0.0);
    EXPECT_EQ(Val(QStringLiteral("- 3")), 0.0);
}

TEST(LegacyNumberVal, TakesNoExponentAndNoCommaDecimal) {
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("1e3")), 1.0);
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("12,5")), 12.0);
}

TEST(LegacyNumberVal, NegativeZeroReadsAsPlainZero) {
    EXPECT_FALSE(std::signbit(Val(QStringLiteral("-0.0"))));
}

TEST(LegacyNumberVal, ReadsLongDigitRunsWithoutFailing) {
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("0.1000000000000000000000000001")), 0.1);
    EXPECT_EQ(Val(QStringLiteral("1") + QString(400, QLatin1Char('0'))),
              std::numeric_limits<double>::infinity());
    EXPECT_EQ(Val(QStringLiteral("0.") + QString(400, QLatin1Char('0')) + QStringLiteral("1")), 0.0);
}

// ---- IsNumeric ---------------------------------------------------------------

TEST(LegacyNumberIsNumeric, AcceptsWholeNumbersWithBlanksAroundAndExponents) {
    EXPECT_TRUE(IsNumeric(QStringLiteral(" 12.5 ")));
    EXPECT_TRUE(IsNumeric(QStringLiteral("-.5")));
    EXPECT_TRUE(IsNumeric(QStringLiteral("1E3")));
    EXPECT_TRUE(IsNumeric(QStringLiteral("2d-2")));
    double v = 0;
    ASSERT_TRUE(parse_numeric(QStringLiteral("2.5e2"), &v));
    EXPECT_DOUBLE_EQ(v, 250.0);
}

TEST(LegacyNumberIsNumeric, RefusesEmptyPartialAndCommaNumbers) {
    EXPECT_FALSE(IsNumeric(QString()));
    EXPECT_FALSE(IsNumeric(QStringLiteral("  ")));
    EXPECT_FALSE(IsNumeric(QStringLiteral("12a")));
    EXPECT_FALSE(IsNumeric(QStringLiteral(".")));
    EXPECT_FALSE(IsNumeric(QStringLiteral("1e")));
    EXPECT_FALSE(IsNumeric(QStringLiteral("1,5")));
    EXPECT_FALSE(IsNumeric(QStringLiteral("A")));
}

// ---- Format masks --------------------------------------------------------------

TEST(LegacyNumberMask, OneDecimalMaskAlwaysShowsAWholeDigit) {
    EXPECT_EQ(format_mask(0, QStringLiteral("##0.0")), QStringLiteral("0.0"));
    EXPECT_EQ(format_mask(0.5, QStringLiteral("##0.0")), QStringLiteral("0.5"));
    EXPECT_EQ(format_mask(100, QStringLiteral("##0.0")), QStringLiteral("100.0"));
    EXPECT_EQ(format_mask(7, QStringLiteral("##0.0")), QStringLiteral("7.0"));
    EXPECT_EQ(format_one_decimal(28), QStringLiteral("28.0"));
}

TEST(LegacyNumberMask, HashOnlyMaskDropsTheWholeDigitBelowOne) {
    EXPECT_EQ(format_mask(0.5, QStringLiteral("###.0")), QStringLiteral(".5"));
    EXPECT_EQ(format_mask(0, QStringLiteral("###.0")), QStringLiteral(".0"));
    EXPECT_EQ(format_mask(0.04, QStringLiteral("###.0")), QStringLiteral(".0"));
    EXPECT_EQ(format_mask(47.142857, QStringLiteral("###.0")), QStringLiteral("47.1"));
}

TEST(LegacyNumberMask, RoundsHalfAwayFromZeroAfterFifteenDigits) {
    // 0.15 and 2.25 lie just below and at the half in binary; the 15-digit
    // step makes both go up.
    EXPECT_EQ(format_one_decimal(0.15), QStringLiteral("0.2"));
    EXPECT_EQ(format_one_decimal(2.25), QStringLiteral("2.3"));
    EXPECT_EQ(format_one_decimal(0.35), QStringLiteral("0.4"));
    EXPECT_EQ(format_one_decimal(1.05), QStringLiteral("1.1"));
    EXPECT_EQ(format_one_decimal(-2.25), QStringLiteral("-2.3"));
    EXPECT_EQ(format_one_decimal(9.96), QStringLiteral("10.0"));
    EXPECT_EQ(format_one_decimal(99.95), QStringLiteral("100.0"));
    EXPECT_EQ(format_one_decimal(0.1 + 0.2), QStringLiteral("0.3"));
    EXPECT_EQ(format_one_decimal(21.0 / 30.0 * 40.0), QStringLiteral("28.0"));
}

TEST(LegacyNumberMask, HasNoThousandsSeparatorAndWidensPastThePlaceholders) {
    EXPECT_EQ(format_one_decimal(1234.5), QStringLiteral("1234.5"));
    EXPECT_EQ(format_mask(1234567.25, QStringLiteral("##0.0")), QStringLiteral("1234567.3"));
    EXPECT_EQ(format_mask(12345.6, QStringLiteral(" ###0.0")), QStringLiteral(" 12345.6"));
}

TEST(LegacyNumberMask, NegativeValuesLeadWithMinus) {
    EXPECT_EQ(format_one_decimal(-3.5), QStringLiteral("-3.5"));
    EXPECT_EQ(format_mask(-0.5, QStringLiteral("###.0")), QStringLiteral("-.5"));
    EXPECT_EQ(format_one_decimal(-0.04), QStringLiteral("-0.0"));
    EXPECT_EQ(format_one_decimal(-0.0), QStringLiteral("0.0"));
}

TEST(LegacyNumberMask, LiteralBlankOfTheHeadingMaskStays) {
    EXPECT_EQ(format_mask(45.25, QStringLiteral(" ###0.0")), QStringLiteral(" 45.3"));
    EXPECT_EQ(format_mask(0, QStringLiteral(" ###0.0")), QStringLiteral(" 0.0"));
    EXPECT_EQ(format_mask(100, QStringLiteral(" ###0.0")), QStringLiteral(" 100.0"));
}

TEST(LegacyNumberMask, TotalAndListMasks) {
    EXPECT_EQ(format_mask(1234.56, QStringLiteral("####0.0")), QStringLiteral("1234.6"));
    EXPECT_EQ(format_mask(0.25, QStringLiteral("####0.0")), QStringLiteral("0.3"));
    EXPECT_EQ(format_mask(512, QStringLiteral("######.0")), QStringLiteral("512.0"));
    EXPECT_EQ(format_mask(0.5, QStringLiteral("######.0")), QStringLiteral(".5"));
    EXPECT_EQ(format_mask(3, QStringLiteral("####.0")), QStringLiteral("3.0"));
}

TEST(LegacyNumberMask, GeneralRuleForOtherMasks) {
    EXPECT_EQ(format_mask(5, QStringLiteral("000")), QStringLiteral("005"));
    EXPECT_EQ(format_mask(2.5, QStringLiteral("0")), QStringLiteral("3"));
    EXPECT_EQ(format_mask(1.5, QStringLiteral("0.0#")), QStringLiteral("1.5"));
    EXPECT_EQ(format_mask(1.25, QStringLiteral("0.0#")), QStringLiteral("1.25"));
    EXPECT_EQ(format_mask(12.5, QStringLiteral(".00")), QStringLiteral("12.50"));
    EXPECT_EQ(format_mask(0.125, QStringLiteral("0.00")), QStringLiteral("0.13"));
}

TEST(LegacyNumberMask, LocaleDoesNotChangeAByte) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");  // absent on some machines; harmless then
    EXPECT_EQ(format_one_decimal(12.25), QStringLiteral("12.3"));
    EXPECT_EQ(number_text(0.5), QStringLiteral(" 0.5"));
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("12.5")), 12.5);
    EXPECT_EQ(Currency::from_double(1.5).text(), QStringLiteral("1.5"));
    std::setlocale(LC_NUMERIC, "C");
    QLocale::setDefault(before);
}

// ---- Bank rounding ---------------------------------------------------------------

TEST(LegacyNumberRound, TiesGoToTheEvenDigit) {
    EXPECT_DOUBLE_EQ(Round(12.25, 1), 12.2);
    EXPECT_DOUBLE_EQ(Round(0.25, 1), 0.2);
    EXPECT_DOUBLE_EQ(Round(2.5), 2.0);
    EXPECT_DOUBLE_EQ(Round(3.5), 4.0);
    EXPECT_DOUBLE_EQ(Round(-2.5), -2.0);
}

TEST(LegacyNumberRound, ScalesBeforeRounding) {
    EXPECT_DOUBLE_EQ(Round(47.142857, 1), 47.1);
    // 0.35 * 10 is 3.5 in binary arithmetic, so it goes up to the even 4.
    EXPECT_DOUBLE_EQ(Round(0.35, 1), 0.4);
    EXPECT_DOUBLE_EQ(Round(7.0 / 40.0 * 50.0, 1), 8.8);
    EXPECT_DOUBLE_EQ(Round(1.23456, 4), 1.2346);
}

TEST(LegacyNumberRound, LeavesHugeAndNonFiniteValuesAlone) {
    EXPECT_EQ(Round(1e300, 1), 1e300);
    EXPECT_TRUE(std::isnan(Round(std::nan(""), 1)));
    EXPECT_FALSE(std::signbit(Round(-0.04, 1)));
}

// ---- Number text ------------------------------------------------------------------

TEST(LegacyNumberText, LeadingBlankUnlessNegative) {
    EXPECT_EQ(number_text(100), QStringLiteral(" 100"));
    EXPECT_EQ(number_text(0.5), QStringLiteral(" 0.5"));
    EXPECT_EQ(number_text(-2), QStringLiteral("-2"));
    EXPECT_EQ(number_text(0), QStringLiteral(" 0"));
    EXPECT_EQ(plain_number_text(100), QStringLiteral("100"));
    EXPECT_EQ(plain_number_text(-2.5), QStringLiteral("-2.5"));
}

TEST(LegacyNumberText, FifteenDigitsForADoubleSevenForASingle) {
    EXPECT_EQ(number_text(1.0 / 3.0), QStringLiteral(" 0.333333333333333"));
    EXPECT_EQ(number_text(0.1 + 0.2), QStringLiteral(" 0.3"));
    EXPECT_EQ(number_text(double(1.0f / 3.0f), 7), QStringLiteral(" 0.3333333"));
    EXPECT_EQ(number_text(double(0.1f), 7), QStringLiteral(" 0.1"));
    EXPECT_EQ(number_text(double(123.45f), 7), QStringLiteral(" 123.45"));
    EXPECT_EQ(plain_number_text(2.0 / 3.0), QStringLiteral("0.666666666666667"));
}

TEST(LegacyNumberText, ExponentFormOutsideTheDigitRange) {
    EXPECT_EQ(plain_number_text(123456789012345.0), QStringLiteral("123456789012345"));
    EXPECT_EQ(plain_number_text(1e15), QStringLiteral("1E+15"));
    EXPECT_EQ(plain_number_text(0.0001), QStringLiteral("0.0001"));
    EXPECT_EQ(plain_number_text(0.00001), QStringLiteral("1E-05"));
    EXPECT_EQ(plain_number_text(-1.5e-7), QStringLiteral("-1.5E-07"));
    EXPECT_EQ(plain_number_text(double(12345678.0f), 7), QStringLiteral("1.234568E+07"));
}

// ---- Currency -----------------------------------------------------------------------

TEST(LegacyNumberCurrency, KeepsFourDecimalsTiesToEven) {
    EXPECT_EQ(Currency::from_double(12.34565).ten_thousandths, 123456);  // just below the half
    EXPECT_EQ(Currency::from_double(1.03125).ten_thousandths, 10312);    // exact half, even below
    EXPECT_EQ(Currency::from_double(1.09375).ten_thousandths, 10938);    // exact half, even above
    EXPECT_EQ(Currency::from_double(-1.5).ten_thousandths, -15000);
    EXPECT_DOUBLE_EQ(Currency::from_double(70.0).to_double(), 70.0);
}

TEST(LegacyNumberCurrency, TextDropsTrailingZerosFixed4KeepsThem) {
    EXPECT_EQ(Currency::from_double(12.3456).text(), QStringLiteral("12.3456"));
    EXPECT_EQ(Currency::from_double(-0.5).text(), QStringLiteral("-0.5"));
    EXPECT_EQ(Currency::from_double(0).text(), QStringLiteral("0"));
    EXPECT_EQ(Currency::from_double(70).text(), QStringLiteral("70"));
    EXPECT_EQ(Currency::from_double(12.34).fixed4(), QStringLiteral("12.3400"));
    EXPECT_EQ(Currency::from_double(-0.5).fixed4(), QStringLiteral("-0.5000"));
    EXPECT_EQ(Currency::from_double(0).fixed4(), QStringLiteral("0.0000"));
}

TEST(LegacyNumberCurrency, SaturatesInsteadOfOverflowing) {
    EXPECT_EQ(Currency::from_double(1e300).ten_thousandths, std::numeric_limits<std::int64_t>::max());
    EXPECT_LT(Currency::from_double(-1e300).ten_thousandths, 0);
    EXPECT_EQ(Currency::from_double(std::nan("")).ten_thousandths, 0);
}
