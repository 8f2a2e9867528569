#include "util/legacy_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace veldo {
namespace {

bool is_digit(QChar c) { return c.unicode() >= '0' && c.unicode() <= '9'; }

// Parses an unsigned decimal text made of ASCII digits, one optional point
// and an optional exponent ("12.5", ".5", "3e2"). The result saturates to
// infinity instead of failing, and a vanishing value is 0.
double parse_unsigned(const std::string& text) {
    double value = 0.0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value,
                                           std::chars_format::general);
    (void)end;
    if (ec == std::errc::result_out_of_range) {
        // Tell overflow from underflow by the magnitude of the leading part.
        std::size_t i = 0;
        while (i < text.size() && (text[i] == '0' || text[i] == '.')) ++i;
        const std::size_t e = text.find_first_of("eE");
        long exponent = 0;
        if (e != std::string::npos) {
            std::size_t k = e + 1;
            bool minus = false;
            if (k < text.size() && (text[k] == '+' || text[k] == '-')) minus = text[k++] == '-';
            for (; k < text.size() && text[k] >= '0' && text[k] <= '9'; ++k)
                if (exponent < 100000) exponent = exponent * 10 + (text[k] - '0');
            if (minus) exponent = -exponent;
        }
        const std::size_t point = text.find('.');
        const std::size_t mantissa_end = e == std::string::npos ? text.size() : e;
        const std::size_t int_end = point == std::string::npos ? mantissa_end : point;
        const long whole_digits = i < int_end ? long(int_end - i) : -long(i - int_end);
        return whole_digits + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    if (ec != std::errc()) return 0.0;
    return value;
}

// The decimal digits of a non-negative finite value, taken to `significant`
// digits: value = 0.D1D2...Dn * 10^point.
struct Digits {
    std::string d;
    int point = 0;
};

Digits digits_of(double value, int significant) {
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::scientific,
                                   significant - 1);
    Digits out;
    const char* p = buf;
    for (; p < res.ptr && *p != 'e'; ++p)
        if (*p >= '0' && *p <= '9') out.d.push_back(*p);
    int exponent = 0;
    if (p < res.ptr) {
        ++p;
        if (*p == '+') ++p;
        std::from_chars(p, res.ptr, exponent);
    }
    out.point = exponent + 1;
    return out;
}

// Rounds a digit string half away from zero to `decimals` places after the
// point and returns the whole and the decimal digits ("" for a zero whole part).
void fixed_digits(double abs_value, int decimals, std::string& whole, std::string& fraction) {
    Digits dg = digits_of(abs_value, 15);
    const long keep = long(dg.point) + decimals;  // digits of d that survive
    if (keep < 0) {
        dg.d.clear();
    } else if (keep < long(dg.d.size())) {
        const bool up = dg.d[std::size_t(keep)] >= '5';
        dg.d.resize(std::size_t(keep));
        if (up) {
            long i = keep - 1;
            for (; i >= 0; --i) {
                if (dg.d[std::size_t(i)] == '9') {
                    dg.d[std::size_t(i)] = '0';
                } else {
                    ++dg.d[std::size_t(i)];
                    break;
                }
            }
            if (i < 0) {
                dg.d.insert(dg.d.begin(), '1');
                ++dg.point;
            }
        }
    }
    auto digit_at = [&](long index) -> char {
        return index >= 0 && index < long(dg.d.size()) ? dg.d[std::size_t(index)] : '0';
    };
    whole.clear();
    fraction.clear();
    for (long i = 0; i < dg.point; ++i) whole.push_back(digit_at(i));
    const std::size_t lead = whole.find_first_not_of('0');
    whole.erase(0, lead == std::string::npos ? whole.size() : lead);
    for (long i = 0; i < decimals; ++i) fraction.push_back(digit_at(dg.point + i));
}

bool is_placeholder(QChar c) { return c == QLatin1Char('0') || c == QLatin1Char('#'); }

QString non_finite_text(double value) {
    if (std::isnan(value)) return QStringLiteral("1.#QNAN");
    return value < 0 ? QStringLiteral("-1.#INF") : QStringLiteral("1.#INF");
}

}  // namespace

namespace {

// Val over any text whose characters `at` hands out as UTF-16 code units.
// Up to 15 digits are gathered as an exact whole number and divided by an
// exact power of ten (one correctly rounded division); longer numbers go to
// the full reader.
template <typename CharAt>
double val_of(qsizetype n, CharAt at) {
    static constexpr double kPowers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8,
                                         1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const auto digit = [](char16_t c) { return c >= '0' && c <= '9'; };
    qsizetype i = 0;
    while (i < n && (at(i) == ' ' || at(i) == '\t' || at(i) == '\r' || at(i) == '\n')) ++i;
    bool negative = false;
    if (i < n && (at(i) == '-' || at(i) == '+')) {
        negative = at(i) == '-';
        ++i;
    }
    const qsizetype start = i;
    std::uint64_t mantissa = 0;
    int significant = 0, decimals = 0;
    bool any_digit = false, after_point = false;
    for (; i < n; ++i) {
        const char16_t c = at(i);
        if (c == '.' && !after_point) {
            after_point = true;
            continue;
        }
        if (!digit(c)) break;
        any_digit = true;
        if (after_point) ++decimals;
        if (mantissa == 0 && c == '0') continue;
        ++significant;
        if (significant <= 15) mantissa = mantissa * 10 + std::uint64_t(c - '0');
    }
    if (!any_digit) return 0.0;
    double value = 0.0;
    if (significant <= 15 && decimals <= 15) {
        value = double(mantissa) / kPowers[decimals];
    } else {
        std::string number = "0";
        for (qsizetype k = start; k < i; ++k) number.push_back(char(at(k)));
        value = parse_unsigned(number);
    }
    if (value == 0.0) return 0.0;  // no "-0" from "-0.0"
    return negative ? -value : value;
}

}  // namespace

double Val(const QString& text) {
    const QChar* p = text.constData();
    return val_of(text.size(), [p](qsizetype i) { return p[i].unicode(); });
}

double Val(QLatin1StringView text) {
    const char* p = text.data();
    return val_of(text.size(), [p](qsizetype i) { return char16_t(static_cast<unsigned char>(p[i])); });
}

bool parse_numeric(const QString& text, double* value) {
    const qsizetype n = text.size();
    qsizetype i = 0;
    auto blank = [&](qsizetype k) { return text.at(k) == QLatin1Char(' ') || text.at(k) == QLatin1Char('\t'); };
    while (i < n && blank(i)) ++i;
    qsizetype end = n;
    while (end > i && blank(end - 1)) --end;
    bool negative = false;
    if (i < end && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+'))) {
        negative = text.at(i) == QLatin1Char('-');
        ++i;
    }
    std::string number = "0";
    bool any_digit = false;
    while (i < end && is_digit(text.at(i))) {
        number.push_back(char(text.at(i).unicode()));
        any_digit = true;
        ++i;
    }
    if (i < end && text.at(i) == QLatin1Char('.')) {
        number.push_back('.');
        ++i;
        while (i < end && is_digit(text.at(i))) {
            number.push_back(char(text.at(i).unicode()));
            any_digit = true;
            ++i;
        }
    }
    if (!any_digit) return false;
    if (i < end) {
        const char16_t e = text.at(i).unicode();
        if (e != 'e' && e != 'E' && e != 'd' && e != 'D') return false;
        ++i;
        number.push_back('e');
        if (i < end && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+'))) {
            number.push_back(char(text.at(i).unicode()));
            ++i;
        }
        bool exponent_digit = false;
        while (i < end && is_digit(text.at(i))) {
            number.push_back(char(text.at(i).unicode()));
            exponent_digit = true;
            ++i;
        }
        if (!exponent_digit || i < end) return false;
    }
    if (value) {
        const double v = parse_unsigned(number);
        *value = v == 0.0 ? 0.0 : (negative ? -v : v);
    }
    return true;
}

bool IsNumeric(const QString& text) { return parse_numeric(text, nullptr); }

QString format_mask(double value, const QString& mask) {
    if (!std::isfinite(value)) return non_finite_text(value);
    const qsizetype point = mask.indexOf(QLatin1Char('.'));
    const QStringView int_mask = point < 0 ? QStringView(mask) : QStringView(mask).left(point);
    const QStringView dec_mask = point < 0 ? QStringView() : QStringView(mask).mid(point + 1);

    int decimals = 0;
    for (QChar c : dec_mask)
        if (is_placeholder(c)) ++decimals;
    std::string whole, fraction;
    fixed_digits(std::fabs(value), decimals, whole, fraction);

    // Whole part: '0' from the first one on forces digits; more digits than
    // placeholders all go where the leftmost placeholder stands.
    int placeholders = 0, forced = 0;
    bool seen_zero = false;
    for (QChar c : int_mask) {
        if (!is_placeholder(c)) continue;
        ++placeholders;
        if (c == QLatin1Char('0')) seen_zero = true;
        if (seen_zero) ++forced;
    }
    if (int(whole.size()) < forced) whole.insert(0, std::size_t(forced) - whole.size(), '0');

    QString int_out;  // built right to left
    long next = long(whole.size()) - 1;
    int seen = 0;
    if (placeholders == 0) {
        for (long k = next; k >= 0; --k) int_out.append(QLatin1Char(whole[std::size_t(k)]));
        next = -1;
    }
    for (qsizetype k = int_mask.size() - 1; k >= 0; --k) {
        const QChar c = int_mask.at(k);
        if (!is_placeholder(c)) {
            int_out.append(c);
            continue;
        }
        ++seen;
        if (seen == placeholders) {
            for (; next >= 0; --next) int_out.append(QLatin1Char(whole[std::size_t(next)]));
        } else if (next >= 0) {
            int_out.append(QLatin1Char(whole[std::size_t(next--)]));
        }
    }
    std::reverse(int_out.begin(), int_out.end());

    // Decimal part: a trailing '#' drops a zero digit.
    qsizetype last_shown = -1;
    {
        int index = 0;
        for (qsizetype k = 0; k < dec_mask.size(); ++k) {
            if (!is_placeholder(dec_mask.at(k))) continue;
            if (dec_mask.at(k) == QLatin1Char('0') || fraction[std::size_t(index)] != '0') last_shown = index;
            ++index;
        }
    }
    QString dec_out;
    int index = 0;
    for (QChar c : dec_mask) {
        if (!is_placeholder(c)) {
            dec_out.append(c);
            continue;
        }
        if (index <= last_shown) dec_out.append(QLatin1Char(fraction[std::size_t(index)]));
        ++index;
    }

    QString out;
    if (value < 0) out.append(QLatin1Char('-'));
    out.append(int_out);
    if (point >= 0) {
        out.append(QLatin1Char('.'));
        out.append(dec_out);
    }
    return out;
}

bool one_decimal_tenths_near_half(double value, long long* count) {
    // Near a half, the double nearest a whole number of hundredths (11.25,
    // 0.15) is those hundredths to 15 digits (it lies within a part in 10^16
    // of them, and they have fewer than 15 digits here), and the half goes
    // away from zero. Only other near-halves take the digit work.
    const double hundredths = std::nearbyint(std::fabs(value) * 100.0);
    if (hundredths / 100.0 != std::fabs(value)) return false;
    *count = ((long long)hundredths + 5) / 10;
    return true;
}

double one_decimal_value(double value) {
    long long tenths = 0;
    if (!one_decimal_tenths(value, &tenths)) return Val(format_one_decimal(value));
    // As Val reads "ddd.d": the tenths over ten, and never a negative zero.
    const double read = double(tenths) / 10.0;
    return read == 0.0 ? 0.0 : (value < 0 ? -read : read);
}

// "##0.0" is the mask of every stored mark: the same digits as format_mask
// gives it, put together without walking the mask.
int format_one_decimal_to(double value, char* out) {
    if (!std::isfinite(value)) {
        const QByteArray text = non_finite_text(value).toLatin1();
        std::memcpy(out, text.constData(), std::size_t(text.size()));
        return int(text.size());
    }
    int n = 0;
    long long count = 0;
    if (one_decimal_tenths(value, &count)) {
        if (value < 0) out[n++] = '-';
        char digits[24];
        int d = 0;
        const int decimal = int(count % 10);
        count /= 10;
        do {
            digits[d++] = char('0' + count % 10);
            count /= 10;
        } while (count > 0);
        while (d > 0) out[n++] = digits[--d];
        out[n++] = '.';
        out[n++] = char('0' + decimal);
        return n;
    }
    std::string whole, fraction;
    fixed_digits(std::fabs(value), 1, whole, fraction);
    if (whole.size() + 4 > kOneDecimalRoom) return -1;
    if (value < 0) out[n++] = '-';
    if (whole.empty()) out[n++] = '0';
    for (char c : whole) out[n++] = c;
    out[n++] = '.';
    out[n++] = fraction[0];
    return n;
}

QString format_one_decimal(double value) {
    char buf[kOneDecimalRoom];
    const int n = format_one_decimal_to(value, buf);
    if (n < 0) return format_mask(value, QStringLiteral("##0.0"));
    return QString::fromLatin1(buf, qsizetype(n));
}

namespace {

// value * 10^decimals rounded to a whole number, ties to the even one. The
// tie is judged on the exact value of the double, not on its scaled product:
// 65.25000000000001 lies above the half and goes up, and only a double that
// is exactly halfway (47.53125 to four places) goes to the even digit. fma
// gives the error of the scaled product, which decides where the product
// itself lands on the half. Gives false where the scaled value is too large
// to hold a fraction.
bool scaled_half_even(double value, int decimals, double* whole) {
    double scale = 1.0;
    for (int i = 0; i < decimals; ++i) scale *= 10.0;  // exact up to 10^22
    const double product = value * scale;
    if (!std::isfinite(product) || std::fabs(product) >= 4503599627370496.0) return false;
    const double error = std::fma(value, scale, -product);
    double floor_part = std::floor(product);
    const double fraction = product - floor_part;  // exact below 2^52
    bool up = fraction > 0.5;
    if (fraction == 0.5) up = error > 0 || (error == 0 && std::fmod(floor_part, 2.0) != 0);
    *whole = up ? floor_part + 1 : floor_part;
    return true;
}

}  // namespace

double Round(double value, int decimals) {
    if (!std::isfinite(value) || decimals < 0 || decimals > 22) return value;
    double whole = 0;
    if (!scaled_half_even(value, decimals, &whole)) return value;  // whole already
    double scale = 1.0;
    for (int i = 0; i < decimals; ++i) scale *= 10.0;
    const double r = whole / scale;
    return r == 0.0 ? 0.0 : r;
}

std::string plain_number_chars(double value, int significant) {
    if (!std::isfinite(value)) return non_finite_text(value).toStdString();
    if (value == 0.0) return "0";
    if (significant < 1) significant = 1;
    if (significant > 17) significant = 17;
    Digits dg = digits_of(std::fabs(value), significant);
    while (dg.d.size() > 1 && dg.d.back() == '0') dg.d.pop_back();
    // Always positional: a number taken through text must read back whole
    // with Val, which stops at an exponent.
    std::string out;
    if (value < 0) out.push_back('-');
    if (dg.point <= 0) {
        out += "0.";
        out.append(std::size_t(-dg.point), '0');
        out += dg.d;
    } else if (std::size_t(dg.point) >= dg.d.size()) {
        out += dg.d;
        out.append(std::size_t(dg.point) - dg.d.size(), '0');
    } else {
        out += dg.d.substr(0, std::size_t(dg.point));
        out.push_back('.');
        out += dg.d.substr(std::size_t(dg.point));
    }
    return out;
}

QString plain_number_text(double value, int significant) {
    const std::string out = plain_number_chars(value, significant);
    return QString::fromLatin1(out.data(), qsizetype(out.size()));
}

double number_text_value(double value) {
    if (!std::isfinite(value)) return Val(number_text(value));
    if (value == 0.0) return 0.0;
    // The same 15 digits as number_text writes, read back by the same reader
    // Val hands long numbers to; a decimal reads back the same whether it is
    // written with an exponent or without.
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof buf, std::fabs(value), std::chars_format::scientific, 14);
    const double read = parse_unsigned(std::string(buf, res.ptr));
    if (read == 0.0) return 0.0;
    return value < 0 ? -read : read;
}

bool plain_number_tenths(double value, long long* tenths) {
    if (!(std::fabs(value) < 1e8)) return false;
    const long long k = std::llround(value * 10.0);
    if (k == 0) {
        *tenths = 0;
        return value == 0.0;  // any other value near nought has digits of its own
    }
    // The unit of the 15th significant digit of k/10: with n digits in k it
    // is 10^(n - 16). Within a quarter of it (a fortieth when k/10 is a power
    // of ten, where a value just below has a unit ten times smaller), k/10
    // is what the 15 digits round to: k/10 is one rounding from its double,
    // a ninth of the unit at most, and the difference is exact.
    static constexpr double kUnits[] = {0, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8, 1e-7};
    const unsigned long long whole = (unsigned long long)(k < 0 ? -k : k);
    if (whole >= 1000000000ULL) return false;
    int digits = 1;
    unsigned long long power = 10;
    while (whole >= power) {
        ++digits;
        power *= 10;
    }
    const double margin = kUnits[digits] * (whole == power / 10 ? 0.025 : 0.25);
    if (!(std::fabs(value - double(k) / 10.0) < margin)) return false;
    *tenths = k;
    return true;
}

QString number_text(double value, int significant) {
    const QString text = plain_number_text(value, significant);
    return text.startsWith(QLatin1Char('-')) ? text : QLatin1Char(' ') + text;
}

Currency Currency::from_double(double value) {
    Currency c;
    if (std::isnan(value)) return c;
    const double scaled = value * 10000.0;
    // Saturate rather than hand llrint a value it cannot hold.
    constexpr double limit = 9.2e18;
    double whole = 0;
    if (scaled >= limit) {
        c.ten_thousandths = std::numeric_limits<std::int64_t>::max();
    } else if (scaled <= -limit) {
        c.ten_thousandths = std::numeric_limits<std::int64_t>::min() + 1;
    } else if (scaled_half_even(value, 4, &whole)) {
        c.ten_thousandths = std::int64_t(whole);
    } else {
        c.ten_thousandths = std::llrint(scaled);  // past 2^52: whole already
    }
    return c;
}

namespace {
QString currency_text(std::int64_t v, bool keep_zeros) {
    const bool negative = v < 0;
    // Work in unsigned so the smallest value has a magnitude too.
    const std::uint64_t mag = negative ? std::uint64_t(0) - std::uint64_t(v) : std::uint64_t(v);
    std::string frac = std::to_string(mag % 10000);
    frac.insert(0, 4 - frac.size(), '0');
    if (!keep_zeros) {
        while (!frac.empty() && frac.back() == '0') frac.pop_back();
    }
    std::string out;
    if (negative) out.push_back('-');
    out += std::to_string(mag / 10000);
    if (!frac.empty()) {
        out.push_back('.');
        out += frac;
    }
    return QString::fromLatin1(out.data(), qsizetype(out.size()));
}
}  // namespace

QString Currency::text() const { return currency_text(ten_thousandths, false); }
QString Currency::fixed4() const { return currency_text(ten_thousandths, true); }

}  // namespace veldo
