#pragma once
// Pieces the screens' windows share: the form's colour, the centred title and
// the series list (vak_grid) filled from the rows of the series table.

#include <QList>
#include <QStringList>

class QLabel;
class QTableWidget;
class QWidget;

namespace veldo {

// The family's form colour on `form`.
void paint_form(QWidget* form);
// A centred bold title in 15 points.
QLabel* screen_title(const QString& text, QWidget* parent);
// vak_grid: nine columns, no headings, one whole row selected, rows trimmed;
// the first row current, so that Enter can open it at once.
QTableWidget* series_list(const QList<QStringList>& rows, QWidget* parent);

}  // namespace veldo
