#include "util/text_helpers.h"

#include <QDate>
#include <QTime>

#include <gtest/gtest.h>

#include <vector>

#include <pwd.h>
#include <unistd.h>

using namespace veldo;

namespace {

QVariant text(const char* s) { return QVariant(QString::fromUtf8(s)); }
QVariant i16(int v) { return QVariant::fromValue(qint16(v)); }
QVariant date(int y, int m, int d) { return QVariant::fromValue(ole_date_from(QDate(y, m, d))); }
const OleDate kToday = ole_date_from(QDate(2026, 11, 23));

}  // namespace

// ---- toets_null ---------------------------------------------------------------

TEST(TextHelpersToetsNull, ZeroDateAndNullGiveEmptyText) {
    const QVariant zero_date = QVariant::fromValue(OleDate{0.0});
    EXPECT_EQ(toets_null(zero_date).typeId(), QMetaType::QString);
    EXPECT_EQ(toets_null(zero_date).toString(), QString());
    EXPECT_EQ(toets_null(null_value()).typeId(), QMetaType::QString);
    EXPECT_EQ(toets_null(null_value()).toString(), QString());
}

TEST(TextHelpersToetsNull, BlankTextIsEmptyText) {
    const QVariant r = toets_null(text("     "));
    EXPECT_EQ(r.typeId(), QMetaType::QString);
    EXPECT_EQ(r.toString(), QString());
}

TEST(TextHelpersToetsNull, TextStartingWithCodeZeroIsEmptyText) {
    const QVariant binary_zero(QString(QChar(0)) + QStringLiteral("abc"));
    EXPECT_EQ(toets_null(binary_zero).toString(), QString());
}

TEST(TextHelpersToetsNull, ZeroIsTheTextZeroNotATypedZero) {
    const QVariant r = toets_null(i16(0));
    EXPECT_EQ(r.typeId(), QMetaType::QString);
    EXPECT_EQ(r.toString(), QStringLiteral("0"));
    EXPECT_EQ(toets_null(QVariant(0.0)).toString(), QStringLiteral("0"));
}

TEST(TextHelpersToetsNull, NumbersComeBackAsText) {
    const QVariant r = toets_null(i16(5));
    EXPECT_EQ(r.typeId(), QMetaType::QString);
    EXPECT_EQ(r.toString(), QStringLiteral("5"));
    EXPECT_EQ(toets_null(QVariant(12.5)).toString(), QStringLiteral("12.5"));
    EXPECT_EQ(toets_null(QVariant(0.1f)).toString(), QStringLiteral("0.1"));
    EXPECT_EQ(toets_null(QVariant(false)).toString(), QStringLiteral("False"));
}

TEST(TextHelpersToetsNull, TrimsTheRightOnly) {
    EXPECT_EQ(toets_null(text("  Jan  ")).toString(), QStringLiteral("  Jan"));
    // Only spaces are trimmed: a tab is part of the text.
    EXPECT_EQ(toets_null(text("a\t ")).toString(), QStringLiteral("a\t"));
}

TEST(TextHelpersToetsNull, DatesAsShortDateText) {
    EXPECT_EQ(toets_null(date(2017, 1, 2)).toString(), QStringLiteral("2017/01/02"));
}

TEST(TextHelpersToetsNull, TextFormIsNeverNull) {
    EXPECT_EQ(toets_null_text(null_value()), QString());
    EXPECT_EQ(toets_null_text(i16(0)), QStringLiteral("0"));
    EXPECT_EQ(toets_null_text(QVariant(true)), QStringLiteral("True"));
}

// ---- right_justify / left_justify ---------------------------------------------------

TEST(TextHelpersJustify, RightJustifyCutsTheLeftOfALongValue) {
    QVariant v = text("12345");
    EXPECT_EQ(right_justify(v, 3, text("0")), QStringLiteral("345"));
    EXPECT_EQ(v.toString(), QStringLiteral("345"));  // updated in place
}

TEST(TextHelpersJustify, LeftJustifyCutsTheRightOfALongValue) {
    QVariant v = text("12345");
    EXPECT_EQ(left_justify(v, 3), QStringLiteral("123"));
    EXPECT_EQ(v.toString(), QStringLiteral("123"));
}

TEST(TextHelpersJustify, RightJustifyFills) {
    QVariant a = text("7");
    EXPECT_EQ(right_justify(a, 3, text("")), QStringLiteral("  7"));
    QVariant b = text("7");
    EXPECT_EQ(right_justify(b, 3, text("0")), QStringLiteral("007"));
    QVariant c = text("7");
    EXPECT_EQ(right_justify(c, 3, text("AB")), QStringLiteral("AA7"));
    QVariant d = text("7");
    EXPECT_EQ(right_justify(d, 3), QStringLiteral("  7"));
    QVariant e = text("7");
    EXPECT_EQ(right_justify(e, 3, text("   ")), QStringLiteral("  7"));
}

TEST(TextHelpersJustify, RightJustifyTrimsBothSides) {
    QVariant v = text("  7  ");
    EXPECT_EQ(right_justify(v, 4, text("0")), QStringLiteral("0007"));
}

TEST(TextHelpersJustify, LeftJustifyKeepsABlankFill) {
    QVariant a = text("7");
    EXPECT_EQ(left_justify(a, 3, text(" ")), QStringLiteral("7  "));
    QVariant b = text("7");
    EXPECT_EQ(left_justify(b, 3, text("")), QStringLiteral("7  "));
    QVariant c = text("7");
    EXPECT_EQ(left_justify(c, 4, text("*-")), QStringLiteral("7***"));
}

TEST(TextHelpersJustify, LeftJustifyTrimsTheRightOnly) {
    QVariant v = text(" 7  ");
    EXPECT_EQ(left_justify(v, 4, text(".")), QStringLiteral(" 7.."));
}

TEST(TextHelpersJustify, NullGivesWidthSpaces) {
    QVariant a = null_value();
    EXPECT_EQ(right_justify(a, 4, text("0")), QStringLiteral("    "));
    QVariant b = null_value();
    EXPECT_EQ(left_justify(b, 2, text("0")), QStringLiteral("  "));
}

TEST(TextHelpersJustify, NumbersAreJustifiedByTheirText) {
    QVariant v = i16(42);
    EXPECT_EQ(right_justify(v, 5, text("0")), QStringLiteral("00042"));
    EXPECT_EQ(v.typeId(), QMetaType::QString);
}

TEST(TextHelpersJustify, TextOnlyConveniences) {
    EXPECT_EQ(right_justified(QStringLiteral("12345"), 3, QStringLiteral("0")), QStringLiteral("345"));
    EXPECT_EQ(left_justified(QStringLiteral("12345"), 3), QStringLiteral("123"));
    EXPECT_EQ(right_justified(QStringLiteral("7"), 3), QStringLiteral("  7"));
    EXPECT_EQ(left_justified(QStringLiteral("ab"), 0), QString());
}

// ---- upper_afrikaans ----------------------------------------------------------------

TEST(TextHelpersUpperAfrikaans, HoerskoolInBothSpellings) {
    const QString expected = QStringLiteral(u"HO\u00EBRSKOOL");
    EXPECT_EQ(upper_afrikaans(text("hoërskool")).toString(), expected);
    EXPECT_EQ(upper_afrikaans(text("Hoerskool")).toString(), expected);
    EXPECT_EQ(upper_afrikaans(text("HOËRSKOOL")).toString(), expected);
    EXPECT_EQ(upper_afrikaans_text(QStringLiteral("Hoërskool Waterkloof")),
              QStringLiteral(u"HO\u00EBRSKOOL WATERKLOOF"));
}

TEST(TextHelpersUpperAfrikaans, AccentedCapitalsGoBackToLowerCase) {
    EXPECT_EQ(upper_afrikaans_text(QStringLiteral("ê é ë ô")), QStringLiteral("ê é ë ô"));
    EXPECT_EQ(upper_afrikaans_text(QStringLiteral("Ê")), QStringLiteral("ê"));
    EXPECT_EQ(upper_afrikaans_text(QStringLiteral("šœž")), QStringLiteral("šœž"));
    EXPECT_EQ(upper_afrikaans_text(QStringLiteral("ÿ")), QStringLiteral("ÿ"));
}

TEST(TextHelpersUpperAfrikaans, LettersWithoutACapitalInThePageStay) {
    EXPECT_EQ(upper_afrikaans_text(QStringLiteral("µß")), QStringLiteral("µß"));
    EXPECT_EQ(upper_afrikaans_text(QStringLiteral("straße")), QStringLiteral("STRAßE"));
}

TEST(TextHelpersUpperAfrikaans, NullGivesAnEmptyValue) {
    EXPECT_EQ(upper_afrikaans(null_value()).toString(), QString());
    EXPECT_EQ(upper_afrikaans(i16(12)).toString(), QStringLiteral("12"));
}

// ---- title_case_name ----------------------------------------------------------------

TEST(TextHelpersTitleCase, CapitalisesPiecesBetweenBlanksDashesAndUnderscores) {
    EXPECT_EQ(title_case_name(text("JAN VAN DER MERWE")).toString(), QStringLiteral("Jan Van Der Merwe"));
    EXPECT_EQ(title_case_name(text("anna-marie")).toString(), QStringLiteral("Anna-Marie"));
    EXPECT_EQ(title_case_name(text("punte_lys_druk")).toString(), QStringLiteral("Punte_Lys_Druk"));
    EXPECT_EQ(title_case_name(text("  jan  smit ")).toString(), QStringLiteral("Jan  Smit"));
}

TEST(TextHelpersTitleCase, HoerskoolGetsItsDiaeresis) {
    EXPECT_EQ(title_case_name(text("HOERSKOOL DIE BERG")).toString(), QStringLiteral("Hoërskool Die Berg"));
    EXPECT_EQ(title_case_name(text("hoërskool")).toString(), QStringLiteral("Hoërskool"));
}

TEST(TextHelpersTitleCase, FirstLetterMayBeAccented) {
    EXPECT_EQ(title_case_name(text("élise")).toString(), QStringLiteral("Élise"));
}

TEST(TextHelpersTitleCase, NullGivesAnEmptyValue) {
    EXPECT_EQ(title_case_name(null_value()).toString(), QString());
}

// ---- max_of / min_of_val -----------------------------------------------------------

TEST(TextHelpersMaxOf, EmptyTextFirstGivesZeroWhateverB) {
    EXPECT_EQ(max_of(text(""), QVariant(5.0)), 0.0);
    EXPECT_EQ(max_of(text(""), QVariant(1e9)), 0.0);
}

TEST(TextHelpersMaxOf, NumbersCompareAsNumbers) {
    EXPECT_EQ(max_of(QVariant(3.0), i16(7)), 7.0);
    EXPECT_EQ(max_of(QVariant(30.0), i16(7)), 30.0);
    EXPECT_EQ(max_of(QVariant(-1.0), QVariant(false)), 0.0);
}

TEST(TextHelpersMaxOf, TwoTextsCompareAsTexts) {
    // As texts "9" is above "10": the larger by text wins.
    EXPECT_EQ(max_of(text("9"), text("10")), 9.0);
    EXPECT_EQ(max_of(text("10"), text("9")), 9.0);
}

TEST(TextHelpersMaxOf, NumericTextAgainstANumberComparesByValue) {
    EXPECT_EQ(max_of(text("9"), QVariant(10.0)), 10.0);
    EXPECT_EQ(max_of(text("12.5"), QVariant(10.0)), 12.5);
}

TEST(TextHelpersMaxOf, NonNumericTextIsGreaterAndConvertsToZero) {
    EXPECT_EQ(max_of(text("abc"), QVariant(10.0)), 0.0);
    EXPECT_EQ(max_of(QVariant(10.0), text("abc")), 0.0);
}

TEST(TextHelpersMaxOf, NullPassesOver) {
    EXPECT_EQ(max_of(QVariant(4.0), null_value()), 4.0);
    EXPECT_EQ(max_of(null_value(), QVariant(4.0)), 0.0);
}

TEST(TextHelpersMinOfVal, ReadsBothThroughVal) {
    EXPECT_EQ(min_of_val(text("abc"), QVariant(3.0)), 0.0);
    EXPECT_EQ(min_of_val(text("12abc"), text(" 4.5")), 4.5);
    EXPECT_EQ(min_of_val(i16(-2), text("1")), -2.0);
    EXPECT_EQ(min_of_val(null_value(), QVariant(3.0)), 0.0);
}

// ---- date_to_dotted -----------------------------------------------------------------

TEST(TextHelpersDateToDotted, EightDigitsGetDots) {
    EXPECT_EQ(date_to_dotted(text("20170102")).toString(), QStringLiteral("2017.01.02"));
}

TEST(TextHelpersDateToDotted, AlreadyDottedIsReturnedUntouched) {
    EXPECT_EQ(date_to_dotted(text("2017.01.02")).toString(), QStringLiteral("2017.01.02"));
    EXPECT_EQ(date_to_dotted(text("2017.01.02  ")).toString(), QStringLiteral("2017.01.02  "));
    // Untested beyond the two dots.
    EXPECT_EQ(date_to_dotted(text("2017.99.99")).toString(), QStringLiteral("2017.99.99"));
}

TEST(TextHelpersDateToDotted, ZeroDateAndBlankGiveEmpty) {
    EXPECT_EQ(date_to_dotted(text("00:00:00")).toString(), QString());
    EXPECT_EQ(date_to_dotted(text("12:00:00 AM")).toString(), QString());
    EXPECT_EQ(date_to_dotted(QVariant::fromValue(OleDate{0.0})).toString(), QString());
    EXPECT_EQ(date_to_dotted(text("   ")).toString(), QString());
    EXPECT_EQ(date_to_dotted(null_value()).toString(), QString());
}

TEST(TextHelpersDateToDotted, SlashedAndDashedDatesBecomeDotted) {
    EXPECT_EQ(date_to_dotted(text("2017/01/02")).toString(), QStringLiteral("2017.01.02"));
    EXPECT_EQ(date_to_dotted(text("2017/1/2")).toString(), QStringLiteral("2017.01.02"));
    EXPECT_EQ(date_to_dotted(date(2026, 11, 23)).toString(), QStringLiteral("2026.11.23"));
    EXPECT_EQ(date_to_dotted(text("17.1.2")).toString(), QStringLiteral("2017.01.02"));
}

TEST(TextHelpersDateToDotted, TheYearIsCutToTwoDigitsOnTheWay) {
    // Only the last two digits of each part survive step 7.
    EXPECT_EQ(date_to_dotted(text("1995/03/04")).toString(), QStringLiteral("1995.03.04"));
    EXPECT_EQ(date_to_dotted(text("2045/03/04")).toString(), QStringLiteral("1945.03.04"));
}

TEST(TextHelpersDateToDotted, DashesWithoutDotOrSlashAreTakenAsDigits) {
    // Step 4 comes before the date test.
    EXPECT_EQ(date_to_dotted(text("2017-01-02")).toString(), QStringLiteral("2017.-0.02"));
}

TEST(TextHelpersDateToDotted, NoDateOrATimeOfDayGivesEmpty) {
    EXPECT_EQ(date_to_dotted(text("abc/def")).toString(), QString());
    EXPECT_EQ(date_to_dotted(text("2017/13/45")).toString(), QString());
    EXPECT_EQ(date_to_dotted(text("2017/01/02 10:30 AM")).toString(), QString());
}

// ---- ctod ----------------------------------------------------------------------------

TEST(TextHelpersCtod, BlankIsTheZeroDate) {
    EXPECT_EQ(ctod(text("   "), kToday), OleDate{});
    EXPECT_EQ(ctod(null_value(), kToday), OleDate{});
}

TEST(TextHelpersCtod, YearFirstFormsAreRead) {
    EXPECT_EQ(ctod(text("2017/02/03"), kToday), ole_date_from(QDate(2017, 2, 3)));
    EXPECT_EQ(ctod(text("2017.02.03"), kToday), ole_date_from(QDate(2017, 2, 3)));
    EXPECT_EQ(ctod(text("2017-12-31"), kToday), ole_date_from(QDate(2017, 12, 31)));
}

TEST(TextHelpersCtod, SlashedFormFailingInTheConversionIsToday) {
    EXPECT_EQ(ctod(text("2017/02/31"), kToday), kToday);
}

TEST(TextHelpersCtod, BadMonthOrDayOrSeparatorIsToday) {
    EXPECT_EQ(ctod(text("2017-13-01"), kToday), kToday);
    EXPECT_EQ(ctod(text("2017-00-01"), kToday), kToday);
    EXPECT_EQ(ctod(text("2017-01-32"), kToday), kToday);
    EXPECT_EQ(ctod(text("2017-02-31"), kToday), kToday);
    EXPECT_EQ(ctod(text("20170203"), kToday), kToday);
    EXPECT_EQ(ctod(text("2017.02/03"), kToday), kToday);
    EXPECT_EQ(ctod(text("03/02/2017"), kToday), kToday);
    EXPECT_EQ(ctod(text("2017"), kToday), kToday);
}

TEST(TextHelpersCtod, WithoutATodayUsesTheClock) {
    EXPECT_EQ(ctod(text("nonsense")), ole_today());
}

// ---- Dates and plain text ---------------------------------------------------------------

TEST(TextHelpersDates, DayCountsFromTheFamilyEpoch) {
    EXPECT_EQ(ole_date_from(QDate(1899, 12, 30)).days, 0.0);
    EXPECT_EQ(ole_date_from(QDate(1900, 1, 1)).days, 2.0);
    EXPECT_EQ(ole_date_from(QDate(2000, 1, 1)).days, 36526.0);
    EXPECT_EQ(ole_date_from(QDate(2000, 1, 1), QTime(18, 0)).days, 36526.75);
    EXPECT_EQ(ole_date_from(QDate(1899, 12, 29), QTime(6, 0)).days, -1.25);
    EXPECT_EQ(date_of(OleDate{36526.75}), QDate(2000, 1, 1));
    EXPECT_EQ(date_of(OleDate{-1.25}), QDate(1899, 12, 29));
}

TEST(TextHelpersDates, TextForms) {
    EXPECT_EQ(short_date_text(QDate(2026, 11, 23)), QStringLiteral("2026/11/23"));
    EXPECT_EQ(date_value_text(OleDate{0.0}), QStringLiteral("00:00:00"));
    EXPECT_EQ(date_value_text(ole_date_from(QDate(2026, 11, 23))), QStringLiteral("2026/11/23"));
    EXPECT_EQ(date_value_text(ole_date_from(QDate(2026, 11, 23), QTime(14, 5))),
              QStringLiteral("2026/11/23 14:05:00"));
    EXPECT_EQ(date_value_text(OleDate{0.5}), QStringLiteral("12:00:00"));
}

TEST(TextHelpersPlainText, EachTypeInItsOwnForm) {
    EXPECT_EQ(plain_text(null_value()), QString());
    EXPECT_EQ(plain_text(QVariant(1.0 / 3.0)), QStringLiteral("0.333333333333333"));
    EXPECT_EQ(plain_text(QVariant(1.0f / 3.0f)), QStringLiteral("0.3333333"));
    EXPECT_EQ(plain_text(i16(-7)), QStringLiteral("-7"));
    EXPECT_EQ(plain_text(QVariant(true)), QStringLiteral("True"));
    EXPECT_EQ(plain_text(QVariant(false)), QStringLiteral("False"));
    EXPECT_EQ(plain_text(date(2017, 1, 2)), QStringLiteral("2017/01/02"));
    EXPECT_EQ(plain_text(text(" x ")), QStringLiteral(" x "));
}

// ---- fill_array, login name ---------------------------------------------------------------

TEST(TextHelpersFillArray, EveryElementTakesTheValue) {
    double totals[46];
    fill_array(totals, 1.5);
    for (double t : totals) EXPECT_EQ(t, 1.5);
    std::vector<QString> names(3);
    fill_array(names, QStringLiteral("x"));
    EXPECT_EQ(names, (std::vector<QString>(3, QStringLiteral("x"))));
}

TEST(TextHelpersLoginName, ComesFromTheEnvironmentFirst) {
    const QByteArray saved = qgetenv("USER");
    qputenv("USER", "juffrou");
    EXPECT_EQ(get_login_name(), QStringLiteral("juffrou"));
    qunsetenv("USER");
    const QByteArray saved_logname = qgetenv("LOGNAME");
    qunsetenv("LOGNAME");
    // Without either variable the account database answers.
    if (const passwd* pw = getpwuid(geteuid())) {
        EXPECT_EQ(get_login_name(), QString::fromLocal8Bit(pw->pw_name));
    }
    if (!saved_logname.isNull()) qputenv("LOGNAME", saved_logname);
    if (!saved.isNull()) qputenv("USER", saved);
}
