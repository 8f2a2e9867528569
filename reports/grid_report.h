#pragma once
// The grid report: a hidden TextGrid printed as a ruled table below the page
// head. It prints as many rows as the page holds and removes them from the
// grid, so that a form calls it in a loop with page_head:
//
//     while (true) {
//         page_head(surface, job, run, title, subtitle);
//         if (print_grid_report(surface, job, grid) != GridReportResult::PageFull) break;
//     }
//
// Mark-up in the grid's texts: an alignment prefix "<", "^" or ">" per column
// in the FormatString (a column without one prints left, its heading too); "~~R~~" opening a heading turns it by 90 degrees;
// "~NL~" or a line break breaks a cell; a cell of "a¦a" counts as empty; the
// tag "autofit" fits the column widths to the contents first.
//
// Widths. A grid's column widths are twips at the grid's font, and the
// measuring letter "W" carries them to paper: a column as wide as k letters
// "W" on the grid is k letters "W" wide in the print font. A "W" of the grid
// is taken as 0.6 x the grid's font size in points, 20 twips a point. Half a
// "W" of the print font is the padding on each side of a cell. A width of -1
// (never set) is fitted to the column's contents; a width of 0 hides the
// column.

#include <map>
#include <memory>
#include <QString>

#include "reports/page_engine.h"
#include "reports/print_surface.h"
#include "util/text_grid.h"

namespace veldo {

// The bound of the report's column arrays.
inline constexpr int kMaxReportColumns = 200;
// The bound of autofit's arrays.
inline constexpr int kMaxAutofitColumns = 101;

enum class GridReportResult {
    Finished,  // every row printed (or handed to a worksheet)
    PageFull,  // rows remain: page_head (new_print_job is raised) and call again
    Refused,   // too many columns; nothing printed, the form's loop ends
};

// What a column's texts need so that none is cut, in columns of the
// printing font: its widest line, and its widest word.
struct ColumnNeeds {
    float line = 0;
    float word = 0;
};
using MeasuredColumns = std::map<int, ColumnNeeds>;

struct GridReportOptions {
    float left_offset = 0;   // shift of the table, in columns
    float top_offset = 0;    // and in lines
    int first_row = 1;       // the first row to print; anything below 1 is 1
    int group_every = -1;    // a double rule every so many columns from group_column
    int group_column = -1;
    int rows_per_block = 9999;  // rows that stay together on a page
    bool no_margin = false;
    int last_column = -1;       // columns to print; -1 is all of them
    bool to_excel_file = false; // straight to a new workbook, not the page
    // The columns' needs, measured on the first page of a print and kept for
    // the pages after it, which hold fewer of the grid's rows: measuring
    // once keeps the print fast and its columns alike on every page.
    std::shared_ptr<MeasuredColumns> measured;
};

GridReportResult print_grid_report(PrintSurface& surface, PrintJob& job, TextGrid& grid,
                                   const GridReportOptions& options = {});
// The twin for the mark book setup print: a row with a cell of "<PAGE>"
// starts a new page (the row itself isn't printed), and the progress
// window's list of pages starts anew.
GridReportResult print_setup_report(PrintSurface& surface, PrintJob& job, TextGrid& grid,
                                    const GridReportOptions& options = {});

// The form's loop sees a refusal as the end of the report.
inline bool report_done(GridReportResult r) { return r != GridReportResult::PageFull; }

// Drops characters from the end until the text fits `width` columns; a blank
// text stays as it is.
QString fit_cell_text(const PrintSurface& surface, const QString& text, float width);
// Splits at "~NL~" and line breaks; a part wider than `width` breaks at its
// last blank within the width, or hard at the width. Parts joined by "\n".
QString wrap_cell_text(const PrintSurface& surface, const QString& text, float width);
// True for a text with "~NL~", CR or LF.
bool has_line_break(const QString& text);

// Sets each column's width from its longest trimmed text, at the print font,
// with the padding. A column whose longest text is empty or starts with a
// control character keeps its width; "~~R~~" headings don't count. False
// (nothing changed) for a grid of more than kMaxAutofitColumns columns.
bool autofit_columns(const PrintSurface& surface, TextGrid& grid);

// A grid width in twips as columns of the print font.
float grid_width_in_columns(const PrintSurface& surface, const TextGrid& grid, int twips);

}  // namespace veldo
