#pragma once
// The quoted-values text format of the settings and setup files: each value
// written between double quotes (booleans as #TRUE# / #FALSE#), values of a
// line separated by commas, lines ended by CR LF. Reading takes a quoted
// value up to its closing quote, anything else up to the next comma or line
// end; a double quote inside a value is not escaped.

#include <QByteArray>
#include <QList>
#include <QString>

namespace veldo {

struct QuotedValue {
    enum class Kind { Text, Boolean, Bare };  // Bare: a number or other unquoted item
    Kind kind = Kind::Text;
    QString text;        // Text and Bare: the value; Boolean: "#TRUE#" or "#FALSE#"
    bool boolean = false;

    static QuotedValue of_text(const QString& t) { return {Kind::Text, t, false}; }
    static QuotedValue of_bool(bool b) { return {Kind::Boolean, b ? "#TRUE#" : "#FALSE#", b}; }
    static QuotedValue bare(const QString& t) { return {Kind::Bare, t, false}; }
    // The value as a program reads it: booleans as "True"/"False", the rest as text.
    QString as_text() const;
    bool as_bool() const;  // #TRUE#, "True", "-1" and non-zero numbers are true
};

using QuotedLine = QList<QuotedValue>;

// Reads every line of a file's bytes (Windows-1252). Blank lines give empty
// lines. Never fails: stray quotes end a value, what follows a closing quote
// up to the separator is passed over.
QList<QuotedLine> read_quoted_lines(const QByteArray& bytes);
// All values one after the other, whatever their line, as Input # reads them.
QList<QuotedValue> read_quoted_values(const QByteArray& bytes);
// Writes lines in the same format (Windows-1252, CR LF after each line).
QByteArray write_quoted_lines(const QList<QuotedLine>& lines);
// One value a line: the layout of the setup and path files.
QByteArray write_one_per_line(const QStringList& values);

}  // namespace veldo
