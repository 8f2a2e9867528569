#pragma once
// The mark book as a report grid: learners down, the named setup rows
// across, headed "P7" (Afrikaans) or "M7" (English) for setup row 7, with
// the rows' totals under the headings.

#include <QString>
#include <QStringList>

#include "markbook/setup_model.h"
#include "reports/report_run.h"
#include "util/text_grid.h"

namespace veldo {

class DbfTable;

// Widths of the grid's columns in twips.
// Twenty mark columns and the learner fit across an A4 page in landscape.
constexpr int kPrintNumberWidth = 300;
constexpr int kPrintLearnerNumberWidth = 600;
constexpr int kPrintLearnerWidth = 2500;
constexpr int kPrintMarkWidth = 550;

// Fills `grid` from the setup and the marks table: the heading row, the
// totals row, then one row per record with its running number and every
// field. A row without a name gets no heading and no width, and neither do
// the columns behind the last heading. With `sort_by_column` the rows are
// sorted numerically, descending, on column 2.
void fill_print_grid(TextGrid& grid, const MarkBookSetup& setup, DbfTable& marks, bool afrikaans,
                     bool sort_by_column = false);

// The legend under the table: "P7 KLASWERK" for each named row from
// `first_column` to `last_column` of the grid, four to a line, each
// left-justified to a quarter of `line_width` characters; with a width of 0
// one to a line, as a workbook takes them.
QStringList mark_book_legend(const TextGrid& grid, const MarkBookSetup& setup, bool afrikaans, int line_width,
                             int first_column = 3, int last_column = -1);

// The setup grid of the setup screen, as it prints: the heading row of the
// five columns, then rows 1 to 40 with their number and fields; the name of
// a total row is pale yellow (0xC0FFFF), the others white. Column 1 is 4500
// wide for the print.
void fill_setup_grid(TextGrid& grid, const MarkBookSetup& setup, bool afrikaans);
QString setup_print_title(bool afrikaans);  // "PUNTEBOEK OPSTELLING" / "MARK BOOK SETUP"

// The print of the mark book screen: the grid in landscape, at most 20 mark
// columns to a block, the legend, and a second block for the columns past
// 20. False when the user cancelled the output choice.
bool print_mark_book(ReportRun& r, const MarkBookSetup& setup, DbfTable& marks, const QString& title);

// The merit list of one column, highest mark first, as the input screen
// prints it through the print screen: running number, learner's number,
// learner and the mark, headed by the column's name, in portrait. False when
// the user cancelled the output choice.
bool print_merit_list(ReportRun& r, DbfTable& marks, const QString& column_name, int column, const QString& title);

// The print of the setup screen's grid.
bool print_setup(ReportRun& r, const MarkBookSetup& setup);

}  // namespace veldo
