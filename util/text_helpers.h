#pragma once
// The small helpers applied to every value read from a record file or a
// table. Their odd cases are part of the data format: what they return is
// what gets stored, compared and printed.

#include <QDate>
#include <QMetaType>
#include <QTime>
#include <QString>
#include <QVariant>

namespace veldo {

// A date as the family stores it: days since 1899-12-30, time as fraction.
struct OleDate {
    double days = 0.0;
    bool operator==(const OleDate&) const = default;
};

// Values are QVariants: an invalid QVariant is Null; text is QString; a 16-bit
// integer is qint16 (QMetaType::Short); a single is float; a double is
// double; a boolean is bool; a date is OleDate.
QVariant null_value();

// Right-trimmed text of a value, or an empty value of its own type.
QVariant toets_null(const QVariant& value);
// toets_null(value) as text ("" for Null, "0" for a typed zero, "False").
QString toets_null_text(const QVariant& value);

QString right_justify(QVariant& value, int width, const QVariant& fill = QVariant());
QString left_justify(QVariant& value, int width, const QVariant& fill = QVariant());
// Text-only conveniences of the pair, for callers that need no update in place.
QString right_justified(const QString& value, int width, const QString& fill = QString());
QString left_justified(const QString& value, int width, const QString& fill = QString());

QVariant upper_afrikaans(const QVariant& text);
QString upper_afrikaans_text(const QString& text);
QVariant title_case_name(const QVariant& text);

double max_of(const QVariant& a, const QVariant& b);
double min_of_val(const QVariant& a, const QVariant& b);

QVariant date_to_dotted(const QVariant& value);
// Strict reading of the year-first forms; `today` stands in for the clock.
OleDate ctod(const QVariant& value, const OleDate& today);
OleDate ctod(const QVariant& value);  // with today's date

template <typename T, std::size_t N>
void fill_array(T (&array)[N], const T& value) {
    for (auto& element : array) element = value;
}
template <typename Container, typename T>
void fill_array(Container& array, const T& value) {
    for (auto& element : array) element = value;
}

// The login name of this user from the operating system; "" when unknown.
QString get_login_name();

// Dates. The short date form is "yyyy/mm/dd"; the zero date prints as
// "00:00:00".
OleDate ole_date_from(const QDate& date, const QTime& time = QTime(0, 0));
OleDate ole_today();
QDate date_of(const OleDate& d);
QString short_date_text(const QDate& date);   // "2026/11/23"
// The plain text form of a date value: "2026/11/23", "2026/11/23 14:05:00",
// "14:05:00" for a time alone, "00:00:00" for the zero date.
QString date_value_text(const OleDate& d);
// The plain text form of any value: numbers shortest, singles to 7 digits,
// booleans "True"/"False", dates as above, Null as "".
QString plain_text(const QVariant& value);

}  // namespace veldo

Q_DECLARE_METATYPE(veldo::OleDate)
