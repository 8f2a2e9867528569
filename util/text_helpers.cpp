#include "util/text_helpers.h"

#include "util/cp1252.h"
#include "util/legacy_number.h"

#include <QDate>
#include <QStringList>
#include <QTime>

#include <cmath>
#include <optional>

#include <pwd.h>
#include <unistd.h>

namespace veldo {
namespace {

const QDate kEpoch(1899, 12, 30);

// The trims of the family remove spaces only; a tab is text.
QString trim_right(const QString& s) {
    qsizetype end = s.size();
    while (end > 0 && s.at(end - 1) == QLatin1Char(' ')) --end;
    return s.left(end);
}
QString trim_both(const QString& s) {
    qsizetype start = 0;
    while (start < s.size() && s.at(start) == QLatin1Char(' ')) ++start;
    qsizetype end = s.size();
    while (end > start && s.at(end - 1) == QLatin1Char(' ')) --end;
    return s.mid(start, end - start);
}

bool is_null(const QVariant& v) { return !v.isValid(); }
bool is_text(const QVariant& v) { return v.typeId() == QMetaType::QString; }
bool is_date(const QVariant& v) { return v.metaType() == QMetaType::fromType<OleDate>(); }

// Case changes stay inside the code page: a letter whose other case the page
// lacks (the upper case of µ, of ÿ's neighbours in Unicode) keeps its form.
QChar upper_in_page(QChar c) {
    const QChar u = c.toUpper();
    return cp1252::code_of(u) >= 0 ? u : c;
}
QChar lower_in_page(QChar c) {
    const QChar l = c.toLower();
    return cp1252::code_of(l) >= 0 ? l : c;
}
QString upper_in_page(const QString& s) {
    QString out = s;
    for (QChar& c : out) c = upper_in_page(c);
    return out;
}
QString lower_in_page(const QString& s) {
    QString out = s;
    for (QChar& c : out) c = lower_in_page(c);
    return out;
}

int two_digit_year(int y) { return y < 30 ? 2000 + y : 1900 + y; }

struct DateField {
    int value = 0;
    int digits = 0;
};

std::optional<DateField> number_field(QStringView s) {
    if (s.isEmpty() || s.size() > 4) return std::nullopt;
    DateField f;
    for (QChar c : s) {
        if (c.unicode() < '0' || c.unicode() > '9') return std::nullopt;
        f.value = f.value * 10 + (c.unicode() - '0');
    }
    f.digits = int(s.size());
    return f;
}

std::optional<QDate> make_date(const DateField& y, int m, int d) {
    int year = y.value;
    if (y.digits <= 2) year = two_digit_year(year);
    if (year < 100 || year > 9999) return std::nullopt;
    const QDate date(year, m, d);
    if (!date.isValid()) return std::nullopt;
    return date;
}

// Three numbers split by one of ". / -". A four-digit first number is a
// year-first date; a four-digit last one is day-first, else month-first; with
// two-digit numbers the short date order (year first) is tried first.
std::optional<QDate> parse_date_part(QStringView s) {
    QChar sep;
    for (QChar c : s) {
        if (c == QLatin1Char('.') || c == QLatin1Char('/') || c == QLatin1Char('-')) {
            sep = c;
            break;
        }
    }
    if (sep.isNull()) return std::nullopt;
    const auto parts = s.split(sep);
    if (parts.size() != 3) return std::nullopt;
    const auto a = number_field(parts[0]);
    const auto b = number_field(parts[1]);
    const auto c = number_field(parts[2]);
    if (!a || !b || !c) return std::nullopt;
    if (a->digits >= 3) {
        if (b->digits > 2 || c->digits > 2) return std::nullopt;
        return make_date(*a, b->value, c->value);
    }
    if (b->digits > 2) return std::nullopt;
    if (c->digits >= 3) {
        if (auto d = make_date(*c, b->value, a->value)) return d;
        return make_date(*c, a->value, b->value);
    }
    if (auto d = make_date(*a, b->value, c->value)) return d;
    if (auto d = make_date(*c, b->value, a->value)) return d;
    return make_date(*c, a->value, b->value);
}

// "h:mm", "h:mm:ss", each with an optional AM or PM.
std::optional<QTime> parse_time_part(QStringView s) {
    s = s.trimmed();
    int half = 0;  // 0 none, 1 AM, 2 PM
    if (s.size() >= 2) {
        const QStringView tail = s.right(2);
        if (tail.compare(QLatin1String("AM"), Qt::CaseInsensitive) == 0) half = 1;
        if (tail.compare(QLatin1String("PM"), Qt::CaseInsensitive) == 0) half = 2;
        if (half) s = s.chopped(2).trimmed();
    }
    const auto parts = s.split(QLatin1Char(':'));
    if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
    int v[3] = {0, 0, 0};
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const auto f = number_field(parts[i]);
        if (!f || f->digits > 2) return std::nullopt;
        v[i] = f->value;
    }
    if (half) {
        if (v[0] < 1 || v[0] > 12) return std::nullopt;
        v[0] = v[0] % 12 + (half == 2 ? 12 : 0);
    }
    if (v[0] > 23 || v[1] > 59 || v[2] > 59) return std::nullopt;
    return QTime(v[0], v[1], v[2]);
}

// The date test and conversion of this system: a date, a time, or a date
// followed by a blank and a time. Anything else is no date.
std::optional<OleDate> parse_date_text(const QString& text) {
    const QString t = trim_both(text);
    if (t.isEmpty()) return std::nullopt;
    const qsizetype blank = t.indexOf(QLatin1Char(' '));
    const QStringView first = blank < 0 ? QStringView(t) : QStringView(t).left(blank);
    const QStringView rest = blank < 0 ? QStringView() : QStringView(t).mid(blank + 1);
    if (first.contains(QLatin1Char(':'))) {
        const auto time = parse_time_part(t);
        if (!time) return std::nullopt;
        return OleDate{time->msecsSinceStartOfDay() / 86400000.0};
    }
    const auto date = parse_date_part(first);
    if (!date) return std::nullopt;
    QTime time(0, 0);
    if (!rest.trimmed().isEmpty()) {
        const auto t2 = parse_time_part(rest);
        if (!t2) return std::nullopt;
        time = *t2;
    }
    return ole_date_from(*date, time);
}

// A value as a number for comparison and conversion; nullopt for Null and
// for a text that is no number.
std::optional<double> number_of(const QVariant& v) {
    if (is_null(v)) return std::nullopt;
    if (is_text(v)) {
        double value = 0.0;
        if (parse_numeric(v.toString(), &value)) return value;
        return std::nullopt;
    }
    if (is_date(v)) return v.value<OleDate>().days;
    if (v.typeId() == QMetaType::Bool) return v.toBool() ? -1.0 : 0.0;
    bool ok = false;
    const double d = v.toDouble(&ok);
    if (ok) return d;
    return std::nullopt;
}

// The comparison of two variants as they stand: texts as texts, numbers as
// numbers, a text against a number numerically when the text is a number and
// as the greater otherwise. nullopt where Null makes the answer Null.
std::optional<int> compare_variants(const QVariant& a, const QVariant& b) {
    if (is_null(a) || is_null(b)) return std::nullopt;
    if (is_text(a) && is_text(b)) {
        const int c = QString::compare(a.toString(), b.toString(), Qt::CaseSensitive);
        return c < 0 ? -1 : (c > 0 ? 1 : 0);
    }
    const auto x = number_of(a);
    const auto y = number_of(b);
    if (is_text(a) && !x) return 1;
    if (is_text(b) && !y) return -1;
    if (!x || !y) return std::nullopt;
    return *x < *y ? -1 : (*x > *y ? 1 : 0);
}

QString right_part(const QString& s, qsizetype n) { return n >= s.size() ? s : s.right(n); }

}  // namespace

QVariant null_value() { return QVariant(); }

QVariant toets_null(const QVariant& value) {
    if (is_date(value) && value.value<OleDate>().days == 0.0) return QString(QLatin1String(""));
    if (is_null(value)) return QString(QLatin1String(""));
    const QString t = plain_text(value);
    if (trim_both(t).isEmpty() || t.at(0).unicode() == 0) {
        switch (value.typeId()) {
        case QMetaType::Short:
            return QVariant::fromValue(qint16(0));
        case QMetaType::Float:
            return QVariant::fromValue(0.0f);
        case QMetaType::Double:
            return QVariant::fromValue(0.0);
        case QMetaType::Bool:
            return QVariant::fromValue(false);
        default:
            return QString(QLatin1String(""));
        }
    }
    return trim_right(t);
}

QString toets_null_text(const QVariant& value) { return plain_text(toets_null(value)); }

QString right_justify(QVariant& value, int width, const QVariant& fill) {
    if (width < 0) width = 0;
    QString f = is_null(fill) ? QString() : plain_text(fill);
    if (trim_both(f).isEmpty()) f = QStringLiteral(" ");
    if (is_null(value)) {
        value = QString(width, QLatin1Char(' '));
    } else {
        value = right_part(QString(width, f.at(0)) + trim_both(plain_text(value)), width);
    }
    return value.toString();
}

QString left_justify(QVariant& value, int width, const QVariant& fill) {
    if (width < 0) width = 0;
    QString f = is_null(fill) ? QString() : plain_text(fill);
    if (f.isEmpty()) f = QStringLiteral(" ");
    if (is_null(value)) {
        value = QString(width, QLatin1Char(' '));
    } else {
        value = (trim_right(plain_text(value)) + QString(width, f.at(0))).left(width);
    }
    return value.toString();
}

QString right_justified(const QString& value, int width, const QString& fill) {
    QVariant v(value);
    return right_justify(v, width, QVariant(fill));
}

QString left_justified(const QString& value, int width, const QString& fill) {
    QVariant v(value);
    return left_justify(v, width, QVariant(fill));
}

QString upper_afrikaans_text(const QString& text) {
    QString out = upper_in_page(text);
    for (QChar& c : out) {
        const int code = cp1252::code_of(c);
        if (code >= 128 && code <= 223) c = lower_in_page(c);
    }
    out.replace(QLatin1String("HOERSKOOL"), QStringLiteral(u"HO\u00EBRSKOOL"));
    return out;
}

QVariant upper_afrikaans(const QVariant& text) {
    if (is_null(text)) return QString(QLatin1String(""));
    return upper_afrikaans_text(plain_text(text));
}

QVariant title_case_name(const QVariant& text) {
    if (is_null(text)) return QString(QLatin1String(""));
    QString s = lower_in_page(plain_text(text));
    for (const QChar sep : {QLatin1Char(' '), QLatin1Char('-'), QLatin1Char('_')}) {
        QStringList pieces = trim_both(s).split(sep);
        for (QString& piece : pieces)
            if (!piece.isEmpty()) piece[0] = upper_in_page(piece.at(0));
        s = pieces.join(sep);
    }
    s.replace(QLatin1String("Hoerskool"), QStringLiteral(u"Ho\u00EBrskool"));
    return s;
}

double max_of(const QVariant& a, const QVariant& b) {
    if (is_text(a) && a.toString().isEmpty()) return 0.0;
    const auto c = compare_variants(a, b);
    const QVariant& chosen = (c && *c < 0) ? b : a;
    // A value that is no number ends the routine with its start value, 0.
    return number_of(chosen).value_or(0.0);
}

double min_of_val(const QVariant& a, const QVariant& b) {
    const double x = Val(plain_text(a));
    const double y = Val(plain_text(b));
    return y < x ? y : x;
}

QVariant date_to_dotted(const QVariant& value) {
    const QString s = plain_text(value);
    const QString t = trim_both(s);
    if (t == QLatin1String("00:00:00") || t == QLatin1String("12:00:00 AM"))
        return QString(QLatin1String(""));
    if (t.isEmpty()) return QString(QLatin1String(""));
    if (s.size() >= 8 && s.at(4) == QLatin1Char('.') && s.at(7) == QLatin1Char('.')) return value;
    if (!s.contains(QLatin1Char('.')) && !s.contains(QLatin1Char('/')))
        return s.left(4) + QLatin1Char('.') + s.mid(4, 2) + QLatin1Char('.') + right_part(s, 2);
    if (!parse_date_text(s)) return QString(QLatin1String(""));
    if (t.endsWith(QLatin1Char('M'))) return QString(QLatin1String(""));
    QChar sep;
    if (t.contains(QLatin1Char('.'))) sep = QLatin1Char('.');
    if (t.contains(QLatin1Char('/'))) sep = QLatin1Char('/');
    if (t.contains(QLatin1Char('-'))) sep = QLatin1Char('-');
    const QStringList parts = t.split(sep);
    if (parts.size() < 3) return QString(QLatin1String(""));
    QStringList two;
    for (int i = 0; i < 3; ++i) two << right_part(QStringLiteral("00") + parts.at(i), 2);
    const auto date = parse_date_text(two.join(QLatin1Char('/')));
    if (!date) return QString(QLatin1String(""));
    return short_date_text(date_of(*date)).replace(QLatin1Char('/'), QLatin1Char('.'));
}

OleDate ctod(const QVariant& value, const OleDate& today) {
    const QString s = plain_text(value);
    if (trim_both(s).isEmpty()) return OleDate{};
    auto at = [&](qsizetype i) { return i < s.size() ? s.at(i) : QChar(); };
    if (at(4) == QLatin1Char('/') && at(7) == QLatin1Char('/')) return parse_date_text(s).value_or(today);
    const auto dot_or_dash = [](QChar c) { return c == QLatin1Char('.') || c == QLatin1Char('-'); };
    if (!dot_or_dash(at(4))) return today;
    if (!dot_or_dash(at(7))) return today;
    const QString month = s.mid(5, 2);
    const QString day = s.mid(8, 2);
    const double m = Val(month);
    if (m < 1 || m > 12) return today;
    const double d = Val(day);
    if (d < 1 || d > 31) return today;
    return parse_date_text(s.left(4) + QLatin1Char('/') + month + QLatin1Char('/') + day).value_or(today);
}

OleDate ctod(const QVariant& value) { return ctod(value, ole_today()); }

QString get_login_name() {
    QString name = qEnvironmentVariable("USER");
    if (name.isEmpty()) name = qEnvironmentVariable("LOGNAME");
    if (name.isEmpty()) {
        if (const passwd* pw = getpwuid(geteuid()); pw && pw->pw_name)
            name = QString::fromLocal8Bit(pw->pw_name);
    }
    const qsizetype zero = name.indexOf(QChar(0));
    if (zero >= 0) name.truncate(zero);
    // The system asked with a buffer of 255 characters; a longer name failed.
    if (name.size() > 254) return QString();
    return name;
}

OleDate ole_date_from(const QDate& date, const QTime& time) {
    if (!date.isValid()) return OleDate{};
    const double whole = double(kEpoch.daysTo(date));
    const double fraction = time.isValid() ? time.msecsSinceStartOfDay() / 86400000.0 : 0.0;
    // Before the epoch the fraction still counts forward from midnight.
    return OleDate{whole < 0 ? whole - fraction : whole + fraction};
}

OleDate ole_today() { return ole_date_from(QDate::currentDate()); }

QDate date_of(const OleDate& d) {
    if (!std::isfinite(d.days) || std::fabs(d.days) > 3.0e6) return QDate();
    return kEpoch.addDays(qint64(std::trunc(d.days)));
}

QString short_date_text(const QDate& date) {
    if (!date.isValid()) return QString();
    return QStringLiteral("%1/%2/%3")
        .arg(date.year(), 4, 10, QLatin1Char('0'))
        .arg(date.month(), 2, 10, QLatin1Char('0'))
        .arg(date.day(), 2, 10, QLatin1Char('0'));
}

QString date_value_text(const OleDate& d) {
    if (d.days == 0.0) return QStringLiteral("00:00:00");
    if (!std::isfinite(d.days) || std::fabs(d.days) > 3.0e6) return QString();
    double whole = std::trunc(d.days);
    long long seconds = std::llround(std::fabs(d.days - whole) * 86400.0);
    if (seconds >= 86400) {
        seconds -= 86400;
        whole += d.days < 0 ? -1.0 : 1.0;
    }
    const QString time = QTime(0, 0).addSecs(int(seconds)).toString(QStringLiteral("HH:mm:ss"));
    if (whole == 0.0) return time;
    const QString date = short_date_text(kEpoch.addDays(qint64(whole)));
    return seconds == 0 ? date : date + QLatin1Char(' ') + time;
}

QString plain_text(const QVariant& value) {
    if (is_null(value)) return QString(QLatin1String(""));
    if (is_date(value)) return date_value_text(value.value<OleDate>());
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Double:
        return plain_number_text(value.toDouble(), 15);
    case QMetaType::Float:
        return plain_number_text(double(value.toFloat()), 7);
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return QString::number(value.toLongLong());
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return QString::number(value.toULongLong());
    default:
        return value.toString();
    }
}

}  // namespace veldo
