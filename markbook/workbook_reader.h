#pragma once
// The workbook a teacher drops in the data folder to fill a new mark book:
// the first worksheet of an .xlsx (libzip and QXmlStreamReader), an .xls
// (FreeXL) or a .csv, read as plain cell texts. Nothing here needs Excel.

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace veldo {

struct SheetReadError {
    enum Code {
        None,
        Missing,       // no such file
        Unreadable,    // the file or the workbook in it is damaged, locked or too large
        NotAWorkbook,  // the bytes are no workbook this program knows
        NoSheet,       // a workbook without a worksheet
    } code = None;
    QString path;
    QString detail;  // the library's own words, for a log; not shown to the user
};

// The user's message for a failed read; "" for None.
QString sheet_error_message(const SheetReadError& error, bool afrikaans);

// Largest sheet read; cells past these are left out without complaint.
constexpr int kSheetMaxRows = 65536;
constexpr int kSheetMaxColumns = 1024;

// The cell texts of the first worksheet, row 1 first. A row holds as many
// cells as up to its last non-empty one, and the list ends at the last row
// with a non-empty cell, so an empty sheet gives an empty list.
// Numbers come as their plain text ("10001", "12.5"), booleans as
// "TRUE"/"FALSE", error cells as their text; strings are not trimmed.
// The kind of file goes by its first bytes (zip: .xlsx, compound file: .xls),
// then by its name: any other bytes under an .xlsx or .xls name are
// NotAWorkbook, and under any other name they are read as .csv text.
// On failure returns nullopt and fills *error when given.
std::optional<QList<QStringList>> read_first_sheet(const QString& path,
                                                   SheetReadError* error = nullptr);

// The workbook `base_name` in `data_folder`: the name as given when such a
// file exists, else with ".xlsx", ".xls" or ".csv", in that order; case is
// ignored. "" when there is none.
QString find_first_fill_workbook(const QString& data_folder, const QString& base_name);

struct ClassListEntry {
    double number = 0.0;
    QString name;
};

// A class list from a sheet: row 1 is a heading; from row 2 until the first
// row whose first cell is blank, the leading number of the first cell and
// the trimmed text of the second.
QList<ClassListEntry> class_list_from_sheet(const QList<QStringList>& rows);

}  // namespace veldo
