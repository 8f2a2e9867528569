#pragma once
#include <QColor>

namespace veldo {
// The family keeps colours as 0xBBGGRR.
inline QColor colour_of(int bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }
}  // namespace veldo
