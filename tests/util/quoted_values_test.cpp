#include "util/quoted_values.h"

#include <gtest/gtest.h>

using namespace veldo;

namespace {

QByteArray bytes(const char* s) { return QByteArray(s); }
QByteArray bytes(const char* s, int n) { return QByteArray(s, n); }

QStringList texts(const QList<QuotedValue>& values) {
    QStringList out;
    for (const QuotedValue& v : values) out << v.as_text();
    return out;
}

}  // namespace

// ---- Writing ---------------------------------------------------------------

TEST(QuotedValuesWrite, QuotesTextsJoinsWithCommasEndsWithCrLf) {
    const QList<QuotedLine> lines = {
        {QuotedValue::of_text(QStringLiteral("TAAK 1")), QuotedValue::bare(QStringLiteral("10")),
         QuotedValue::of_bool(true), QuotedValue::of_bool(false)},
        {QuotedValue::of_text(QString())}};
    EXPECT_EQ(write_quoted_lines(lines), bytes("\"TAAK 1\",10,#TRUE#,#FALSE#\r\n\"\"\r\n"));
}

TEST(QuotedValuesWrite, WritesWindows1252Bytes) {
    const QList<QuotedLine> lines = {{QuotedValue::of_text(QStringLiteral(u"Ho\u00EBrskool \u20AC5"))}};
    EXPECT_EQ(write_quoted_lines(lines), bytes("\"Ho\xEBrskool \x80" "5\"\r\n"));
}

TEST(QuotedValuesWrite, OnePerLineLayout) {
    EXPECT_EQ(write_one_per_line({QStringLiteral("C:\\data"), QStringLiteral("J")}),
              bytes("\"C:\\data\"\r\n\"J\"\r\n"));
    EXPECT_EQ(write_one_per_line({}), QByteArray());
}

TEST(QuotedValuesWrite, EmptyLineIsABareLineEnd) {
    EXPECT_EQ(write_quoted_lines({QuotedLine{}}), bytes("\r\n"));
}

// ---- Reading -----------------------------------------------------------------

TEST(QuotedValuesRead, ReadsKindsOfValues) {
    const auto lines = read_quoted_lines(bytes("\"abc\",12.5,#TRUE#,#FALSE#\r\n"));
    ASSERT_EQ(lines.size(), 1);
    const QuotedLine& l = lines[0];
    ASSERT_EQ(l.size(), 4);
    EXPECT_EQ(l[0].kind, QuotedValue::Kind::Text);
    EXPECT_EQ(l[0].text, QStringLiteral("abc"));
    EXPECT_EQ(l[1].kind, QuotedValue::Kind::Bare);
    EXPECT_EQ(l[1].text, QStringLiteral("12.5"));
    EXPECT_EQ(l[2].kind, QuotedValue::Kind::Boolean);
    EXPECT_TRUE(l[2].boolean);
    EXPECT_EQ(l[2].as_text(), QStringLiteral("True"));
    EXPECT_EQ(l[3].kind, QuotedValue::Kind::Boolean);
    EXPECT_FALSE(l[3].boolean);
    EXPECT_EQ(l[3].as_text(), QStringLiteral("False"));
}

TEST(QuotedValuesRead, DecodesWindows1252) {
    const auto values = read_quoted_values(bytes("\"HO\xEBRSKOOL\",\"\x80\"\r\n"));
    EXPECT_EQ(texts(values), (QStringList{QStringLiteral(u"HO\u00EBRSKOOL"), QStringLiteral(u"\u20AC")}));
}

TEST(QuotedValuesRead, SkipsLeadingBlanksAndTrimsBareValues) {
    const auto values = read_quoted_values(bytes("  \"a b \" ,\t 7 \t, x y \r\n"));
    EXPECT_EQ(texts(values), (QStringList{QStringLiteral("a b "), QStringLiteral("7"), QStringLiteral("x y")}));
}

TEST(QuotedValuesRead, TextAfterAClosingQuoteIsPassedOver) {
    const auto values = read_quoted_values(bytes("\"abc\"def,\"g\"\r\n"));
    EXPECT_EQ(texts(values), (QStringList{QStringLiteral("abc"), QStringLiteral("g")}));
}

TEST(QuotedValuesRead, UnclosedQuoteEndsAtTheLineEnd) {
    const auto lines = read_quoted_lines(bytes("\"open, still\r\n\"next\"\r\n"));
    ASSERT_EQ(lines.size(), 2);
    ASSERT_EQ(lines[0].size(), 1);
    EXPECT_EQ(lines[0][0].text, QStringLiteral("open, still"));
    ASSERT_EQ(lines[1].size(), 1);
    EXPECT_EQ(lines[1][0].text, QStringLiteral("next"));
}

TEST(QuotedValuesRead, QuoteInsideABareValueIsKept) {
    const auto values = read_quoted_values(bytes("ab\"c,d\r\n"));
    EXPECT_EQ(texts(values), (QStringList{QStringLiteral("ab\"c"), QStringLiteral("d")}));
}

TEST(QuotedValuesRead, TrailingCommaGivesOneMoreEmptyValue) {
    const auto lines = read_quoted_lines(bytes("\"a\",\r\n,\r\n"));
    ASSERT_EQ(lines.size(), 2);
    ASSERT_EQ(lines[0].size(), 2);
    EXPECT_EQ(lines[0][1].text, QString());
    EXPECT_EQ(lines[0][1].kind, QuotedValue::Kind::Bare);
    EXPECT_EQ(lines[1].size(), 2);
}

TEST(QuotedValuesRead, AcceptsCrLfLfAndCrLineEnds) {
    const auto lines = read_quoted_lines(bytes("\"a\"\r\n\"b\"\n\"c\"\r\"d\""));
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[3][0].text, QStringLiteral("d"));
}

TEST(QuotedValuesRead, BlankLinesAreEmptyLinesAndAddNoValues) {
    const QByteArray file = bytes("\"a\"\r\n\r\n   \r\n\"b\"\r\n");
    const auto lines = read_quoted_lines(file);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines[1].isEmpty());
    EXPECT_TRUE(lines[2].isEmpty());
    EXPECT_EQ(texts(read_quoted_values(file)), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

TEST(QuotedValuesRead, ShortAndEmptyFiles) {
    EXPECT_TRUE(read_quoted_lines(QByteArray()).isEmpty());
    EXPECT_TRUE(read_quoted_values(bytes("\r\n")).isEmpty());
    // A last line without its line end still counts.
    EXPECT_EQ(texts(read_quoted_values(bytes("\"J\""))), QStringList{QStringLiteral("J")});
    EXPECT_EQ(texts(read_quoted_values(bytes("\""))), QStringList{QString()});
}

TEST(QuotedValuesRead, ValuesRunOnAcrossLines) {
    const auto values = read_quoted_values(bytes("\"a\",\"b\"\r\n3\r\n#TRUE#\r\n"));
    ASSERT_EQ(values.size(), 4);
    EXPECT_EQ(values[2].text, QStringLiteral("3"));
    EXPECT_TRUE(values[3].as_bool());
}

TEST(QuotedValuesRead, BooleansIgnoreCaseButOnlyUnquoted) {
    const auto values = read_quoted_values(bytes("#true#,\"#TRUE#\""));
    ASSERT_EQ(values.size(), 2);
    EXPECT_EQ(values[0].kind, QuotedValue::Kind::Boolean);
    EXPECT_EQ(values[1].kind, QuotedValue::Kind::Text);
}

TEST(QuotedValuesRead, NulAndHighBytesDoNotUpsetTheReader) {
    const auto values = read_quoted_values(bytes("\"a\0b\",\xFF\x81\r\n", 10));
    ASSERT_EQ(values.size(), 2);
    EXPECT_EQ(values[0].text.size(), 3);
    EXPECT_EQ(values[1].text, QStringLiteral(u"\u00FF\u0081"));
}

TEST(QuotedValuesRead, LargeFileReadsInLinearTime) {
    QByteArray big;
    for (int i = 0; i < 100000; ++i) big += "\"naam\",12.5,#TRUE#\r\n";
    EXPECT_EQ(read_quoted_values(big).size(), 300000);
    const QByteArray one_line(1 << 20, ',');
    EXPECT_EQ(read_quoted_lines(one_line).at(0).size(), (1 << 20) + 1);
}

// ---- As a program reads them -------------------------------------------------------

TEST(QuotedValuesAsBool, TruthOfTextsAndNumbers) {
    EXPECT_TRUE(QuotedValue::of_text(QStringLiteral("True")).as_bool());
    EXPECT_TRUE(QuotedValue::of_text(QStringLiteral("#TRUE#")).as_bool());
    EXPECT_TRUE(QuotedValue::bare(QStringLiteral("-1")).as_bool());
    EXPECT_TRUE(QuotedValue::bare(QStringLiteral("2.5")).as_bool());
    EXPECT_FALSE(QuotedValue::bare(QStringLiteral("0")).as_bool());
    EXPECT_FALSE(QuotedValue::of_text(QStringLiteral("False")).as_bool());
    EXPECT_FALSE(QuotedValue::of_text(QStringLiteral("ja")).as_bool());
    EXPECT_FALSE(QuotedValue::of_text(QString()).as_bool());
}

// ---- Round trip -------------------------------------------------------------------------

TEST(QuotedValuesRoundTrip, WhatIsWrittenReadsBackTheSame) {
    const QList<QuotedLine> lines = {
        {QuotedValue::of_text(QStringLiteral(u"  Ho\u00EBrskool, Pretoria ")),
         QuotedValue::bare(QStringLiteral("-12.5")), QuotedValue::of_bool(true)},
        {},
        {QuotedValue::of_text(QString()), QuotedValue::of_text(QStringLiteral("x"))}};
    const auto again = read_quoted_lines(write_quoted_lines(lines));
    ASSERT_EQ(again.size(), lines.size());
    for (qsizetype i = 0; i < lines.size(); ++i) {
        ASSERT_EQ(again[i].size(), lines[i].size()) << i;
        for (qsizetype j = 0; j < lines[i].size(); ++j) {
            EXPECT_EQ(again[i][j].kind, lines[i][j].kind);
            EXPECT_EQ(again[i][j].text, lines[i][j].text);
            EXPECT_EQ(again[i][j].boolean, lines[i][j].boolean);
        }
    }
}

TEST(QuotedValuesRoundTrip, QuoteInsideATextCannotSurvive) {
    // No escape exists: the second quote ends the value early.
    const auto again = read_quoted_values(
        write_quoted_lines({{QuotedValue::of_text(QStringLiteral("say \"hi\""))}}));
    ASSERT_EQ(again.size(), 1);
    EXPECT_EQ(again[0].text, QStringLiteral("say "));
}
