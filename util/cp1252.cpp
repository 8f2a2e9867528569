#include "util/cp1252.h"

#include <array>

namespace veldo::cp1252 {
namespace {

// Code points of 0x80..0x9F; the unassigned five keep their C1 value.
constexpr std::array<char16_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

QChar char_of(unsigned char code) {
    if (code >= 0x80 && code <= 0x9F) return QChar(kHigh[code - 0x80]);
    return QChar(char16_t(code));
}

int code_of(QChar c) {
    const char16_t u = c.unicode();
    if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) return u;
    for (int i = 0; i < 32; ++i)
        if (kHigh[i] == u) return 0x80 + i;
    return -1;
}

QString decode(const char* data, qsizetype size) {
    QString out(size, Qt::Uninitialized);
    QChar* dst = out.data();
    for (qsizetype i = 0; i < size; ++i) dst[i] = char_of(static_cast<unsigned char>(data[i]));
    return out;
}

QString decode(const QByteArray& bytes) { return decode(bytes.constData(), bytes.size()); }

QByteArray encode(const QString& text) {
    QByteArray out(text.size(), Qt::Uninitialized);
    char* dst = out.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int code = code_of(text.at(i));
        dst[i] = code < 0 ? '?' : static_cast<char>(code);
    }
    return out;
}

namespace {
bool is_blank(char c) {
    const auto u = static_cast<unsigned char>(c);
    return u == ' ' || (u >= 0x09 && u <= 0x0D) || u == 0xA0;
}
}  // namespace

QLatin1StringView trimmed(QLatin1StringView bytes) {
    qsizetype from = 0, to = bytes.size();
    while (from < to && is_blank(bytes[from].toLatin1())) ++from;
    while (to > from && is_blank(bytes[to - 1].toLatin1())) --to;
    return bytes.sliced(from, to - from);
}

}  // namespace veldo::cp1252
