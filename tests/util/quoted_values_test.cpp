#include "util/quoted_values.h"

#include <gtest/gtest.h>

using namespace veldo;

namespace {

QByteArray bytes(const char* s) { return QByteArray(s); }

// A line as its values between commas: texts in quotes, bare values as they
// are, booleans as #TRUE# or #FALSE#.
QString shown(const QList<QuotedValue>& values) {
    QStringList out;
    for (const QuotedValue& v : values) {
        switch (v.kind) {
        case QuotedValue::Kind::Text: out << '"' + v.text + '"'; break;
        case QuotedValue::Kind::Bare: out << v.text; break;
        case QuotedValue::Kind::Boolean: out << (v.boolean ? "#TRUE#" : "#FALSE#"); break;
        }
    }
    return out.join(',');
}

QStringList shown(const QList<QuotedLine>& lines) {
    QStringList out;
    for (const QuotedLine& line : lines) out << shown(line);
    return out;
}

}  // namespace

TEST(QuotedValuesWrite, QuotesTextsJoinsWithCommasEndsWithCrLfInWindows1252) {
    const QList<QuotedLine> lines = {
        {QuotedValue::of_text(QStringLiteral("TAAK 1")), QuotedValue::bare(QStringLiteral("10")),
         QuotedValue::of_bool(true), QuotedValue::of_bool(false)},
        {QuotedValue::of_text(QString())}};
    EXPECT_EQ(write_quoted_lines(lines), bytes("\"TAAK 1\",10,#TRUE#,#FALSE#\r\n\"\"\r\n"));
    EXPECT_EQ(write_quoted_lines({{QuotedValue::of_text(QStringLiteral(u"Ho\u00EBrskool \u20AC5"))}}),
              bytes("\"Ho\xEBrskool \x80" "5\"\r\n"));
    EXPECT_EQ(write_quoted_lines({QuotedLine{}}), bytes("\r\n"));  // an empty line is a bare line end
    EXPECT_EQ(write_one_per_line({QStringLiteral("C:\\data"), QStringLiteral("J")}),
              bytes("\"C:\\data\"\r\n\"J\"\r\n"));
    EXPECT_EQ(write_one_per_line({}), QByteArray());
}

// read_quoted_values gives the values of every line one after the other.
TEST(QuotedValuesRead, ReadsLinesOfValuesAndNeverFails) {
    const std::tuple<QByteArray, QStringList, const char*> rows[] = {  // the file, its lines, why
        {bytes("\"abc\",12.5,#TRUE#,#FALSE#\r\n"), {"\"abc\",12.5,#TRUE#,#FALSE#"}, "each kind of value"},
        {bytes("\"HO\xEBRSKOOL\",\"\x80\"\r\n"), {QStringLiteral(u"\"HO\u00EBRSKOOL\",\"\u20AC\"")}, "Windows-1252"},
        {bytes("  \" a b \" ,\t 7 \t, x y \r\n"), {"\" a b \",7,x y"},
         "blanks before a value skipped, kept inside quotes; bare values trimmed"},
        {bytes("\"abc\"def,\"g\"\r\n"), {"\"abc\",\"g\""}, "text after a closing quote is passed over"},
        {bytes("\"open, still\r\n\"next\"\r\n"), {"\"open, still\"", "\"next\""}, "an open quote ends at the line end"},
        {bytes("ab\"c,d\r\n"), {"ab\"c,d"}, "a quote inside a bare value is kept"},
        {bytes("\"a\",\r\n,\r\n"), {"\"a\",", ","}, "a trailing comma gives one more empty bare value"},
        {bytes("\"a\"\r\n\"b\"\n\"c\"\r\"d\""), {"\"a\"", "\"b\"", "\"c\"", "\"d\""}, "CR LF, LF and CR line ends"},
        {bytes("\"a\"\r\n\r\n   \r\n\"b\"\r\n"), {"\"a\"", "", "", "\"b\""}, "blank lines are empty lines"},
        {QByteArray(), {}, "an empty file"},
        {bytes("\r\n"), {""}, "a line end only"},
        {bytes("\"J\""), {"\"J\""}, "a last line without its line end still counts"},
        {bytes("\""), {"\"\""}, "a lone quote"},
        {bytes("\"a\",\"b\"\r\n3\r\n#TRUE#\r\n"), {"\"a\",\"b\"", "3", "#TRUE#"}, "values run on across lines"},
        {bytes("#true#,\"#TRUE#\""), {"#TRUE#,\"#TRUE#\""}, "booleans ignore case but only unquoted"},
        {QByteArray("\"a\0b\",\xFF\x81\r\n", 10), {QStringLiteral(u"\"a\u0000b\",\u00FF\u0081")},
         "NUL and high bytes do not upset the reader"},
    };
    for (const auto& [file, lines, why] : rows) {
        SCOPED_TRACE(why);
        EXPECT_EQ(shown(read_quoted_lines(file)), lines);
        QStringList values = lines;
        values.removeAll(QString());
        EXPECT_EQ(shown(read_quoted_values(file)), values.join(','));
    }
    const auto line = read_quoted_lines(bytes("#TRUE#,#FALSE#")).at(0);
    EXPECT_EQ(line[0].as_text(), QStringLiteral("True"));
    EXPECT_EQ(line[1].as_text(), QStringLiteral("False"));
}

TEST(QuotedValuesRead, LargeFileReadsInLinearTime) {
    QByteArray big;
    for (int i = 0; i < 100000; ++i) big += "\"naam\",12.5,#TRUE#\r\n";
    EXPECT_EQ(read_quoted_values(big).size(), 300000);
    const QByteArray one_line(1 << 20, ',');
    EXPECT_EQ(read_quoted_lines(one_line).at(0).size(), (1 << 20) + 1);
}

TEST(QuotedValuesAsBool, TruthOfTextsAndNumbers) {
    for (const QuotedValue& yes : {QuotedValue::of_text("True"), QuotedValue::of_text("#TRUE#"),
                                   QuotedValue::bare("-1"), QuotedValue::bare("2.5"), QuotedValue::of_bool(true)})
        EXPECT_TRUE(yes.as_bool()) << yes.text.toStdString();
    for (const QuotedValue& no : {QuotedValue::bare("0"), QuotedValue::of_text("False"), QuotedValue::of_text("ja"),
                                  QuotedValue::of_text(QString())})
        EXPECT_FALSE(no.as_bool()) << no.text.toStdString();
}
