#pragma once
// A recorded print as text, one operation a line, for comparing whole pages
// with a golden file:
//   p<page> <kind> (x, y)[-(x2, y2)] pt(px, py)[-(px2, py2)]
//       "<font>" <size> bold|plain #BBGGRR [fill #BBGGRR] ["<text>"]
// (a picture shows its file name). A last line gives where the pen, font and page stand.
// x and y are in the character scale in force when the operation ran, the
// pt figures in points from the printable area's top left.

#include <QFileInfo>
#include <QString>
#include <QStringList>

#include "reports/recording_surface.h"

namespace veldo::testing {

inline QString print_dump(const RecordingSurface& surface) {
    using Kind = PrintRecord::Kind;
    static const char* const kinds[] = {"Text", "Rotated", "Line", "Box", "Picture", "NewPage", "EndDoc", "KillDoc"};
    const auto n = [](double v) { return QString::number(v, 'f', 3); };
    const auto colour = [](int bgr) { return QStringLiteral("#%1").arg(bgr, 6, 16, QLatin1Char('0')).toUpper(); };
    QStringList out;
    for (const PrintRecord& r : surface.records()) {
        QString line = QStringLiteral("p%1 %2").arg(r.page).arg(QLatin1String(kinds[int(r.kind)]));
        if (r.kind == Kind::NewPage || r.kind == Kind::EndDoc || r.kind == Kind::KillDoc) {
            out << line;
            continue;
        }
        const bool corners = r.kind == Kind::Line || r.kind == Kind::Box || r.kind == Kind::Picture;
        line += QStringLiteral(" (%1, %2)").arg(n(r.x), n(r.y));
        if (corners) line += QStringLiteral("-(%1, %2)").arg(n(r.x2), n(r.y2));
        line += QStringLiteral(" pt(%1, %2)").arg(n(r.px), n(r.py));
        if (corners) line += QStringLiteral("-(%1, %2)").arg(n(r.px2), n(r.py2));
        line += QStringLiteral(" \"%1\" %2 %3 %4").arg(r.font, QString::number(r.size),
                                                        QLatin1String(r.bold ? "bold" : "plain"), colour(r.colour));
        if (r.fill != -1) line += QStringLiteral(" fill ") + colour(r.fill);
        if (r.kind == Kind::Picture) line += QStringLiteral(" \"%1\"").arg(QFileInfo(r.text).fileName());
        if (r.kind == Kind::Text || r.kind == Kind::Rotated) line += QStringLiteral(" \"%1\"").arg(r.text);
        out << line;
    }
    out << QStringLiteral("pen (%1, %2) \"%3\" %4 %5 %6 page %7")
               .arg(n(surface.CurrentX()), n(surface.CurrentY()), surface.font_name(),
                    QString::number(surface.font_size()), QLatin1String(surface.bold() ? "bold" : "plain"),
                    colour(surface.fore_colour()))
               .arg(surface.Page());
    return out.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

}  // namespace veldo::testing
