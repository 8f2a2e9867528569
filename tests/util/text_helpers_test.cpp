#include "util/text_helpers.h"

#include <QDate>
#include <QTime>

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

using namespace veldo;

namespace {

QVariant text(const char* s) { return QVariant(QString::fromUtf8(s)); }
QVariant i16(int v) { return QVariant::fromValue(qint16(v)); }
QVariant date(int y, int m, int d) { return QVariant::fromValue(ole_date_from(QDate(y, m, d))); }
const OleDate kToday = ole_date_from(QDate(2026, 11, 23));

// One value in, one text out.
struct TextRow {
    QVariant in;
    QString expected;
    const char* why = "";
};
std::string trace(const TextRow& r) { return "[" + plain_text(r.in).toStdString() + "] " + r.why; }

}  // namespace

// Always text: Null, the zero date, blanks and a leading code 0 give "";
// anything else its plain text with the spaces (only) on the right cut.
TEST(TextHelpersToetsNull, GivesTheTextOfTheValueTrimmedOnTheRight) {
    const TextRow rows[] = {
        {QVariant::fromValue(OleDate{0.0}), ""}, {null_value(), ""}, {text("     "), ""},
        {QVariant(QString(QChar(0)) + QStringLiteral("abc")), "", "text starting with code 0"},
        {i16(0), "0", "the text zero, not a typed zero"}, {QVariant(0.0), "0"}, {i16(5), "5"},
        {QVariant(12.5), "12.5"}, {QVariant(0.1f), "0.1"}, {QVariant(false), "False"}, {QVariant(true), "True"},
        {text("  Jan  "), "  Jan"}, {text("a\t "), "a\t", "a tab is text"}, {date(2017, 1, 2), "2017/01/02"},
    };
    for (const TextRow& r : rows) {
        SCOPED_TRACE(trace(r));
        const QVariant v = toets_null(r.in);
        EXPECT_EQ(v.typeId(), QMetaType::QString);
        EXPECT_EQ(v.toString(), r.expected);
        EXPECT_EQ(toets_null_text(r.in), r.expected);
    }
}

// The value is changed in place to the text returned. Only the fill's first
// character counts; an empty or blank fill is a blank; Null gives blanks.
TEST(TextHelpersJustify, FillsOrCutsToTheWidthInPlace) {
    const std::tuple<bool, QVariant, int, QVariant, QString> rows[] = {  // right, value, width, fill, text
        {true, text("12345"), 3, text("0"), "345"}, {false, text("12345"), 3, QVariant(), "123"},
        {true, text("7"), 3, text(""), "  7"},      {true, text("7"), 3, text("0"), "007"},
        {true, text("7"), 3, text("AB"), "AA7"},    {true, text("7"), 3, QVariant(), "  7"},
        {true, text("7"), 3, text("   "), "  7"},   {true, text("  7  "), 4, text("0"), "0007"},  // trims both sides
        {false, text("7"), 3, text(" "), "7  "},    {false, text("7"), 3, text(""), "7  "},
        {false, text("7"), 4, text("*-"), "7***"},  {false, text(" 7  "), 4, text("."), " 7.."},  // trims the right
        {true, null_value(), 4, text("0"), "    "}, {false, null_value(), 2, text("0"), "  "},
        {true, i16(42), 5, text("0"), "00042"},     {false, text("ab"), 0, QVariant(), ""},
    };
    for (const auto& [right, value, width, fill, expected] : rows) {
        SCOPED_TRACE(expected.toStdString());
        QVariant v = value;
        EXPECT_EQ(right ? right_justify(v, width, fill) : left_justify(v, width, fill), expected);
        EXPECT_EQ(v.typeId(), QMetaType::QString);
        EXPECT_EQ(v.toString(), expected);
        if (value.typeId() != QMetaType::QString) continue;  // the text-only pair takes texts
        const QString t = value.toString(), f = fill.toString();
        EXPECT_EQ(right ? right_justified(t, width, f) : left_justified(t, width, f), expected);
    }
}

// Capitals inside the code page: accented capitals go back to lower case, a
// letter without a capital in the page stays, HOERSKOOL gets its diaeresis.
TEST(TextHelpersUpperAfrikaans, CapitalisesInsideTheCodePage) {
    const QString hoerskool = QStringLiteral(u"HO\u00EBRSKOOL");
    const TextRow rows[] = {
        {text("hoërskool"), hoerskool}, {text("Hoerskool"), hoerskool}, {text("HOËRSKOOL"), hoerskool},
        {text("Hoërskool Waterkloof"), hoerskool + " WATERKLOOF"},
        {text("ê é ë ô"), "ê é ë ô"}, {text("Ê"), "ê"}, {text("šœž"), "šœž"}, {text("ÿ"), "ÿ"},
        {text("µß"), "µß"}, {text("straße"), "STRAßE"}, {i16(12), "12"},
    };
    for (const TextRow& r : rows) {
        SCOPED_TRACE(trace(r));
        EXPECT_EQ(upper_afrikaans(r.in).toString(), r.expected);
        EXPECT_EQ(upper_afrikaans_text(r.in.toString()), r.expected);
    }
    EXPECT_EQ(upper_afrikaans(null_value()).toString(), QString());
}

TEST(TextHelpersTitleCase, CapitalisesPiecesBetweenBlanksDashesAndUnderscores) {
    const TextRow rows[] = {
        {text("JAN VAN DER MERWE"), "Jan Van Der Merwe"}, {text("anna-marie"), "Anna-Marie"},
        {text("punte_lys_druk"), "Punte_Lys_Druk"},       {text("  jan  smit "), "Jan  Smit"},
        {text("HOERSKOOL DIE BERG"), "Hoërskool Die Berg"}, {text("hoërskool"), "Hoërskool"},
        {text("élise"), "Élise", "the first letter may be accented"}, {null_value(), ""},
    };
    for (const TextRow& r : rows) EXPECT_EQ(title_case_name(r.in).toString(), r.expected) << trace(r);
}

// Texts compare as texts ("9" is above "10"), numbers as numbers, a numeric
// text against a number by value; a text that is no number is the greater and
// gives zero; Null passes over; empty text first gives zero whatever b.
TEST(TextHelpersMaxOf, ComparesAsTheValuesStandAndGivesANumber) {
    const std::tuple<QVariant, QVariant, double> rows[] = {
        {text(""), QVariant(5.0), 0.0},      {text(""), QVariant(1e9), 0.0},
        {QVariant(3.0), i16(7), 7.0},        {QVariant(30.0), i16(7), 30.0},     {QVariant(-1.0), QVariant(false), 0.0},
        {text("9"), text("10"), 9.0},        {text("10"), text("9"), 9.0},
        {text("9"), QVariant(10.0), 10.0},   {text("12.5"), QVariant(10.0), 12.5},
        {text("abc"), QVariant(10.0), 0.0},  {QVariant(10.0), text("abc"), 0.0},
        {QVariant(4.0), null_value(), 4.0},  {null_value(), QVariant(4.0), 0.0},
    };
    for (const auto& [a, b, expected] : rows)
        EXPECT_EQ(max_of(a, b), expected) << plain_text(a).toStdString() << " | " << plain_text(b).toStdString();
    const QList<double> mins{min_of_val(text("abc"), QVariant(3.0)), min_of_val(text("12abc"), text(" 4.5")),
                             min_of_val(i16(-2), text("1")), min_of_val(null_value(), QVariant(3.0))};
    EXPECT_EQ(mins, (QList<double>{0.0, 4.5, -2.0, 0.0}));
}

TEST(TextHelpersDateToDotted, GivesYearMonthDayWithDotsOrEmpty) {
    const TextRow rows[] = {
        {text("20170102"), "2017.01.02", "eight digits get dots"},
        {text("2017.01.02"), "2017.01.02"}, {text("2017.01.02  "), "2017.01.02  "},  // already dotted: untouched
        {text("2017.99.99"), "2017.99.99", "untested beyond the two dots"},
        {text("00:00:00"), ""}, {text("12:00:00 AM"), ""}, {QVariant::fromValue(OleDate{0.0}), ""},
        {text("   "), ""}, {null_value(), ""},
        {text("2017/01/02"), "2017.01.02"}, {text("2017/1/2"), "2017.01.02"}, {date(2026, 11, 23), "2026.11.23"},
        {text("17.1.2"), "2017.01.02"},
        {text("1995/03/04"), "1995.03.04"}, {text("2045/03/04"), "1945.03.04", "the year is cut to two digits"},
        {text("2017-01-02"), "2017.-0.02", "dashes without dot or slash are taken as digits"},
        {text("abc/def"), ""}, {text("2017/13/45"), ""}, {text("2017/01/02 10:30 AM"), "", "a time of day"},
    };
    for (const TextRow& r : rows) EXPECT_EQ(date_to_dotted(r.in).toString(), r.expected) << trace(r);
}

// Year first with "/", "." or "-"; blank is the zero date; anything else today.
TEST(TextHelpersCtod, ReadsYearFirstDatesElseGivesToday) {
    const std::pair<const char*, OleDate> rows[] = {
        {"   ", OleDate{}},
        {"2017/02/03", ole_date_from(QDate(2017, 2, 3))}, {"2017.02.03", ole_date_from(QDate(2017, 2, 3))},
        {"2017-12-31", ole_date_from(QDate(2017, 12, 31))},
        {"2017/02/31", kToday}, {"2017-13-01", kToday}, {"2017-00-01", kToday}, {"2017-01-32", kToday},
        {"2017-02-31", kToday}, {"20170203", kToday},   {"2017.02/03", kToday}, {"03/02/2017", kToday},
        {"2017", kToday},
    };
    for (const auto& [in, expected] : rows) EXPECT_EQ(ctod(text(in), kToday), expected) << in;
    EXPECT_EQ(ctod(null_value(), kToday), OleDate{});
    EXPECT_EQ(ctod(text("nonsense")), ole_today());  // without a today the clock's
}

TEST(TextHelpersDates, DayCountsFromTheFamilyEpoch) {
    const QList<double> days{ole_date_from(QDate(1899, 12, 30)).days, ole_date_from(QDate(1900, 1, 1)).days,
                             ole_date_from(QDate(2000, 1, 1)).days, ole_date_from(QDate(2000, 1, 1), QTime(18, 0)).days,
                             ole_date_from(QDate(1899, 12, 29), QTime(6, 0)).days};
    EXPECT_EQ(days, (QList<double>{0, 2, 36526, 36526.75, -1.25}));
    EXPECT_EQ((QList<QDate>{date_of(OleDate{36526.75}), date_of(OleDate{-1.25})}),
              (QList<QDate>{QDate(2000, 1, 1), QDate(1899, 12, 29)}));
}

// A date as date and time, blank parts left out; numbers without an exponent
// to 15 (double) or 7 (single) digits.
TEST(TextHelpersPlainText, EachTypeInItsOwnForm) {
    EXPECT_EQ(short_date_text(QDate(2026, 11, 23)), QStringLiteral("2026/11/23"));
    const TextRow rows[] = {
        {QVariant::fromValue(OleDate{0.0}), "00:00:00"}, {date(2026, 11, 23), "2026/11/23"},
        {QVariant::fromValue(ole_date_from(QDate(2026, 11, 23), QTime(14, 5))), "2026/11/23 14:05:00"},
        {QVariant::fromValue(OleDate{0.5}), "12:00:00"}, {null_value(), ""},
        {QVariant(1.0 / 3.0), "0.333333333333333"}, {QVariant(1.0f / 3.0f), "0.3333333"}, {i16(-7), "-7"},
        {QVariant(true), "True"}, {QVariant(false), "False"}, {text(" x "), " x "},
    };
    for (const TextRow& r : rows) {
        SCOPED_TRACE(r.expected.toStdString());
        EXPECT_EQ(plain_text(r.in), r.expected);
        if (r.in.metaType() == QMetaType::fromType<OleDate>()) {
            EXPECT_EQ(date_value_text(r.in.value<OleDate>()), r.expected);
        }
    }
}

// USER, else LOGNAME, else the account database; the name as long as the
// system's 255-character buffer held it, and none past that.
TEST(TextHelpersLoginName, ComesFromTheEnvironmentFirst) {
    const QByteArray saved_user = qgetenv("USER"), saved_logname = qgetenv("LOGNAME");
    const passwd* pw = getpwuid(geteuid());
    ASSERT_NE(pw, nullptr);
    const QString account = QString::fromLocal8Bit(pw->pw_name);
    const std::tuple<QByteArray, QByteArray, QString> rows[] = {  // USER, LOGNAME, the name
        {"juffrou", "meneer", "juffrou"}, {"", "meneer", "meneer"}, {"", "", account},
        {QByteArray(254, 'x'), "", QString(254, 'x')}, {QByteArray(255, 'x'), "meneer", ""},
    };
    for (const auto& [user, logname, expected] : rows) {
        user.isEmpty() ? qunsetenv("USER") : qputenv("USER", user);
        logname.isEmpty() ? qunsetenv("LOGNAME") : qputenv("LOGNAME", logname);
        EXPECT_EQ(get_login_name(), expected) << user.size();
    }
    saved_user.isNull() ? qunsetenv("USER") : qputenv("USER", saved_user);
    saved_logname.isNull() ? qunsetenv("LOGNAME") : qputenv("LOGNAME", saved_logname);
}
