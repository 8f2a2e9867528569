#pragma once
// Pieces the screens' windows share: the form's colour, the centred title and
// the series list (vak_grid) filled from the rows of the series table.

#include <QList>
#include <QStringList>

class QLabel;
class QTableWidget;
class QVBoxLayout;
class QWidget;

namespace veldo {

class TextGrid;

// The family's form colour on `form`.
void paint_form(QWidget* form);
// A centred bold title in 15 points.
QLabel* screen_title(const QString& text, QWidget* parent);
// The head of a series screen: the school (ops_ops1), the title and the data
// folder (dir_disp, returned so that a screen can show a new folder).
QLabel* add_screen_head(QVBoxLayout* layout, QWidget* form, const QString& school, const QString& caption,
                        const QString& folder);
// vak_grid: nine columns, no headings, one whole row selected, rows trimmed;
// the first row current, so that Enter can open it at once.
QTableWidget* series_list(const QList<QStringList>& rows, QWidget* parent);
// Shows a grid of the family in `table`: its heading row as the header, the
// other rows below with the grid's alignments, widths (twips; -1 fits the
// text, 0 hides) and cell colours.
void show_text_grid(QTableWidget* table, const TextGrid& grid);

}  // namespace veldo
