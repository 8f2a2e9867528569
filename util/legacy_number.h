#pragma once
// The one number reader and the number formats of the marks. None of this
// depends on the C library's locale: a comma locale must not change a byte.

#include <QString>
#include <string>
#include <cstdint>

namespace veldo {

// The leading number of a text: optional blanks (space, tab, CR, LF), an
// optional sign, digits with a point as decimal sign; stops at the first
// character that does not fit. 0 when there is none.
double Val(const QString& text);
// The same over single-byte text (Windows-1252 as stored in a table): only
// ASCII takes part in a number.
double Val(QLatin1StringView text);

// The numeric test of mixed comparisons and of the grids' generic sort: the
// whole text, blanks on either side aside, is a sign, digits with at most one
// point, and an optional exponent (e, E, d or D). Neither thousands
// separators nor currency signs count. "" is not numeric.
bool IsNumeric(const QString& text);
// As IsNumeric, and stores the number in *value (when not null).
bool parse_numeric(const QString& text, double* value);

// Format masks of the marks: "##0.0", "###.0", "####0.0", "######.0",
// " ###0.0". '0' always shows a digit, '#' only where there is one, other
// characters stand as they are. The value is taken to 15 significant digits
// first and then rounded half away from zero to the mask's decimals. A
// negative value gets a leading "-", even when it rounds to zero ("-0.0"),
// as the original number format did. There is never a thousands separator.
QString format_mask(double value, const QString& mask);
// format_mask(value, "##0.0"): a number with exactly one decimal.
QString format_one_decimal(double value);
// The same into `out`, which holds kOneDecimalRoom bytes; gives the length,
// or -1 for a number too long for it (format_one_decimal takes those).
constexpr int kOneDecimalRoom = 32;
int format_one_decimal_to(double value, char* out);
// The whole number of tenths that format_one_decimal writes for `value`
// (without its sign), where it can be had without the digit work: false for
// the rare value near a half that needs it, and for a very large one.
inline bool one_decimal_tenths(double value, long long* tenths);
// Val(format_one_decimal(value)): the number a one-decimal mark reads back as.
double one_decimal_value(double value);

// Rounding to a number of decimals with ties to the even digit, judged on
// the exact value of the double: only a double that lies exactly halfway is
// a tie (12.25 -> 12.2), one a hair above goes up (65.25000000000001 -> 65.3).
double Round(double value, int decimals = 0);

// The text of a number with a leading blank unless negative, shortest form,
// at most `significant` digits (15 for a double, 7 for a single), always in
// plain decimal notation: 1.5e-7 is " 0.00000015", 1e20
// " 100000000000000000000". Val reads it back whole; it never holds an
// exponent, which Val would stop at.
QString number_text(double value, int significant = 15);
// The plain text of a number: as number_text without the leading blank.
QString plain_number_text(double value, int significant = 15);
// The same as single-byte text (it is only ever ASCII).
std::string plain_number_chars(double value, int significant = 15);
// Val(number_text(value)): the value taken to 15 significant digits, without
// the text in between.
double number_text_value(double value);
// The whole tenths (with their sign) whose text plain_number_chars(value)
// writes, where the value lies so near them that its 15 digits can be no
// other; false for any other value, and from a thousand million tenths on.
bool plain_number_tenths(double value, long long* tenths);

// A 4-decimal fixed-point value, as the averages are kept: the double
// rounded to 4 decimals as Round does.
struct Currency {
    std::int64_t ten_thousandths = 0;
    static Currency from_double(double value);
    double to_double() const { return double(ten_thousandths) / 10000.0; }
    // "12.3456", "-0.5", "0"; no trailing zeros.
    QString text() const;
    // Always four decimals: "12.3400".
    QString fixed4() const;
};

// The rare value near a half in tenths, where the digits decide.
bool one_decimal_tenths_near_half(double value, long long* tenths);

// Inline: the totals call this once or twice for every mark they add up.
inline bool one_decimal_tenths(double value, long long* tenths) {
    // A mark is far from a half in tenths almost always; then taking it to 15
    // digits first can't change the rounding, and the tenths are counted
    // directly. Not below 1e9 (too large, or not a number at all): no.
    const double whole_tenths = (value < 0 ? -value : value) * 10.0;
    if (!(whole_tenths < 1e9)) return false;
    // Below 1e9 and not negative, the whole part is the truncation.
    const double floor_part = double((long long)whole_tenths);
    const double fraction = whole_tenths - floor_part;
    const double off_half = fraction - 0.5;
    if (off_half > 1e-6 || off_half < -1e-6) {
        *tenths = (long long)floor_part + (fraction > 0.5 ? 1 : 0);
        return true;
    }
    return one_decimal_tenths_near_half(value, tenths);
}

}  // namespace veldo
