#include "util/quoted_values.h"

#include "util/cp1252.h"
#include "util/legacy_number.h"

#include <QStringList>

namespace veldo {
namespace {

bool is_blank(QChar c) { return c == QLatin1Char(' ') || c == QLatin1Char('\t'); }
bool is_line_end(QChar c) { return c == QLatin1Char('\r') || c == QLatin1Char('\n'); }

// The values of one line, `text` holding no line end. A line of nothing but
// blanks has no values; otherwise each comma opens one more value, so
// "a," gives "a" and "".
QuotedLine parse_line(QStringView text) {
    QuotedLine line;
    const qsizetype n = text.size();
    qsizetype i = 0;
    while (i < n && is_blank(text.at(i))) ++i;
    if (i == n) return line;
    for (;;) {
        while (i < n && is_blank(text.at(i))) ++i;
        if (i < n && text.at(i) == QLatin1Char('"')) {
            const qsizetype start = ++i;
            while (i < n && text.at(i) != QLatin1Char('"')) ++i;
            line.append(QuotedValue::of_text(text.mid(start, i - start).toString()));
            // Whatever follows the closing quote up to the separator is lost.
            while (i < n && text.at(i) != QLatin1Char(',')) ++i;
        } else {
            const qsizetype start = i;
            while (i < n && text.at(i) != QLatin1Char(',')) ++i;
            qsizetype end = i;
            while (end > start && is_blank(text.at(end - 1))) --end;
            const QStringView item = text.mid(start, end - start);
            if (item.compare(QLatin1String("#TRUE#"), Qt::CaseInsensitive) == 0)
                line.append(QuotedValue::of_bool(true));
            else if (item.compare(QLatin1String("#FALSE#"), Qt::CaseInsensitive) == 0)
                line.append(QuotedValue::of_bool(false));
            else
                line.append(QuotedValue::bare(item.toString()));
        }
        if (i >= n) break;
        ++i;  // the comma
    }
    return line;
}

}  // namespace

QString QuotedValue::as_text() const {
    if (kind == Kind::Boolean) return boolean ? QStringLiteral("True") : QStringLiteral("False");
    return text;
}

bool QuotedValue::as_bool() const {
    if (kind == Kind::Boolean) return boolean;
    const QString t = text.trimmed();
    if (t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0 ||
        t.compare(QLatin1String("#TRUE#"), Qt::CaseInsensitive) == 0)
        return true;
    double value = 0.0;
    return parse_numeric(t, &value) && value != 0.0;
}

QList<QuotedLine> read_quoted_lines(const QByteArray& bytes) {
    const QString text = cp1252::decode(bytes);
    QList<QuotedLine> lines;
    const qsizetype n = text.size();
    qsizetype start = 0;
    while (start < n) {
        qsizetype end = start;
        while (end < n && !is_line_end(text.at(end))) ++end;
        lines.append(parse_line(QStringView(text).mid(start, end - start)));
        if (end < n && text.at(end) == QLatin1Char('\r') && end + 1 < n &&
            text.at(end + 1) == QLatin1Char('\n'))
            ++end;
        start = end + 1;
    }
    return lines;
}

QList<QuotedValue> read_quoted_values(const QByteArray& bytes) {
    QList<QuotedValue> values;
    for (const QuotedLine& line : read_quoted_lines(bytes)) values.append(line);
    return values;
}

QByteArray write_quoted_lines(const QList<QuotedLine>& lines) {
    QString text;
    for (const QuotedLine& line : lines) {
        for (qsizetype i = 0; i < line.size(); ++i) {
            if (i > 0) text.append(QLatin1Char(','));
            const QuotedValue& v = line.at(i);
            switch (v.kind) {
            case QuotedValue::Kind::Text:
                // No escape exists: a quote in the text is written as it is.
                text.append(QLatin1Char('"'));
                text.append(v.text);
                text.append(QLatin1Char('"'));
                break;
            case QuotedValue::Kind::Boolean:
                text.append(v.boolean ? QLatin1String("#TRUE#") : QLatin1String("#FALSE#"));
                break;
            case QuotedValue::Kind::Bare:
                text.append(v.text);
                break;
            }
        }
        text.append(QLatin1String("\r\n"));
    }
    return cp1252::encode(text);
}

QByteArray write_one_per_line(const QStringList& values) {
    QList<QuotedLine> lines;
    lines.reserve(values.size());
    for (const QString& v : values) lines.append(QuotedLine{QuotedValue::of_text(v)});
    return write_quoted_lines(lines);
}

}  // namespace veldo
