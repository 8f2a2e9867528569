#pragma once
// The worksheet side of a report. When the user sends a report to Excel the
// page engine's heads and the grid report's tables land here instead of on
// paper: one sheet per report, the head in the cells of rows 1 to 3, the
// table from row 6. The workbook is kept in memory and written through
// libxlsxwriter only when the job ends, as "<export_folder><export_stem>.xlsx".
//
// Cells are written as numbers where the whole trimmed text is a plain
// decimal number ("12", " 45.5", "-3"), and as text otherwise; that is what
// Excel made of the same texts typed into a range, except that an integer
// with a leading zero ("007") stays text, so the sheet shows what the paper
// would.

#include <QString>
#include <QStringList>
#include <map>
#include <vector>

#include "reports/page_engine.h"

namespace veldo {

struct RunState;
class TextGrid;

// The letters of sheet column n (from 1): "A" to "Z", then two letters from
// the whole division by 26 and the remainder, the letter of value v being the
// character 64 + v. So 27 is "AA" and 53 "BA", and 52 gives "B@", as the
// family's range texts always did. Not above 26 * 26 + 25; "" below 1.
// The writer itself addresses cells by number, so a 52nd column still lands
// in column AZ of the sheet.
QString column_letters(int n);

class WorkbookOutput {
public:
    static constexpr double kHeadFontSize = 10.0;

    struct Cell {
        QString text;
        bool is_number = false;
        double number = 0.0;
        bool rotated = false;      // vertical text
        bool thirteen_digits = false;  // number format "0000000000000"
        bool wrap = false;         // holds a line break
        bool bold = false;
        int back_rgb = -1;         // 0xRRGGBB, -1 none
        int fore_rgb = -1;
        int align = 0;             // 0 general, 1 left, 2 centre, 3 right
        double font_size = kHeadFontSize;
        bool spills = false;       // runs on over the empty cells beside it: no room of its own
    };
    struct Sheet {
        QString name;
        std::map<std::pair<int, int>, Cell> cells;  // (row, column), both from 1
        std::map<int, double> row_heights;           // points
        std::vector<bool> hidden_columns;            // by column from 1 (index 0 unused)
        double font_size = kHeadFontSize;
    };

    // The first head of a job opens the workbook; `run` gives the language
    // and the dialog service.
    explicit WorkbookOutput(const RunState& run);

    // What page_head does with output to Excel: a new sheet behind the last,
    // the head texts in its cells, excel_row 6.
    void begin_sheet_head(const SheetHead& head);

    // The whole grid from excel_row down: the fixed rows as headings ("~~R~~"
    // turns a heading upright and goes), the rest as cells. Without a sheet
    // a first one is made. Column widths are fitted when the workbook is saved.
    void write_grid_to_sheet(const TextGrid& grid);
    // Text lines below what the sheet holds, after a blank row, one to a row
    // in column 1; they take no width of the column.
    void write_lines_to_sheet(const QStringList& lines);

    // Writes the workbook as "<export_folder><export_stem>.xlsx", replacing a
    // file of that name, and tells the user. A missing folder, a read-only or
    // locked file, or a failed write gives the user's message and leaves any
    // old file as it was; the workbook stays in memory, so the call may be
    // repeated. True when the file was written.
    bool save(const QString& export_folder, const QString& export_stem);
    // The same without any message; *error gets the user's text on failure.
    bool save_to(const QString& path, QString* error);

    static QString export_path(const QString& export_folder, const QString& export_stem);
    static QString completion_message(const QString& export_folder, const QString& export_stem,
                                      bool afrikaans);

    int excel_row() const { return excel_row_; }
    int excel_sheet_number() const { return int(sheets_.size()); }
    const std::vector<Sheet>& sheets() const { return sheets_; }
    // The fitted width of each used column of a sheet (index 0 for column 1),
    // in Excel's character units.
    static std::vector<double> fitted_widths(const Sheet& sheet);

private:
    Sheet& current_sheet();
    void put_text(int row, int col, const QString& text);

    const RunState& run_;
    std::vector<Sheet> sheets_;
    int excel_row_ = 1;
};

// How a grid cell's text goes to a sheet (the rules above); exposed for tests.
WorkbookOutput::Cell sheet_cell_from_text(const QString& text);

// Wires the worksheet side into a job's hooks: the first sheet head (or grid)
// of a job opens a workbook, end_of_print saves it under the job's
// export_folder and export_stem, tells the user and lets it go. Where it
// can't be saved the user is told why and asked for another file name, until
// it is saved or the user cancels. A grid sent straight to a file asks the
// file name first (the remembered Excel folder) and is saved at once. `job`
// and `run` must outlive the hooks.
void install_worksheet_hooks(PrintJob& job, RunState& run);

}  // namespace veldo
