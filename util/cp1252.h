#pragma once
// Windows-1252, the single-byte code page of every file the family writes.
// Qt's own converters cover Latin-1 but not the 0x80-0x9F block of 1252.

#include <QByteArray>
#include <QString>

namespace veldo::cp1252 {

// Bytes to text; the five unassigned codes (0x81, 0x8D, 0x8F, 0x90, 0x9D)
// map to the C1 control of the same number, as Windows does.
QString decode(const QByteArray& bytes);
QString decode(const char* data, qsizetype size);
// Text to bytes; a character the page lacks becomes '?'.
QByteArray encode(const QString& text);
// The code of one character, or -1 when the page lacks it.
int code_of(QChar c);
QChar char_of(unsigned char code);
// Bytes less the blanks at both ends that QString::trimmed takes off the
// decoded text: tab to carriage return, space and the no-break space.
QLatin1StringView trimmed(QLatin1StringView bytes);

}  // namespace veldo::cp1252
