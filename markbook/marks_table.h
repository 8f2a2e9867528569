#pragma once
// The marks table of a series, `marks<N>.dbf`: one row per learner, the
// learner's number and name, then one text field per setup row. It is kept in
// step with the class list `punte<N>.dbf` when a setup is saved, and rebuilt
// in name order, without empty rows, each time a book is opened.

#include <QString>
#include <QStringList>
#include <memory>

#include "markbook/column_lists.h"
#include "markbook/setup_model.h"
#include "store/dbf_table.h"

namespace veldo {

class RecordStore;
struct RunState;

QString marks_table_name(int series);       // "marks<N>.dbf"
QString class_list_table_name(int series);  // "punte<N>.dbf"
QString assessment_table_name(int series);  // "obe_p<N>.dbf"

// A table of series N for the actions that name it "<stem><N>.txt" (an
// export disk's spelling): that name when the folder holds it, else the
// "<stem><N>.dbf" every other screen uses; empty when neither is there.
QString find_group_table(const QString& folder, const QString& stem, int series);

// The messages that close a mark book screen.
QString no_mark_book_message(const RunState& run);         // "3 ..."
QString old_export_message(const RunState& run);           // fewer than 42 fields
QString no_setup_message(const RunState& run, int digit);  // "1 ..." / "2 ..."

// Brings `marks<N>.dbf` in step with the class list after a setup save:
// made from the template when missing, duplicate numbers neutralised in the
// class list, doubled learners emptied, new learners added, departed ones
// deleted by their number. False, with a message shown, when a table can't
// be opened, taken from other workstations or written.
bool update_marks_table(RecordStore& store, int series);

// Rebuilds the table: rows whose number is not above 0 dropped, the rest in
// name order. The new table is written beside the old one and put in its
// place in one step. False when the template is missing (the table is then
// left as it was) or a write fails.
bool rebuild_marks_table(RunState& run, const QString& path, QString* error = nullptr);

// A mark book opened for input.
struct OpenMarkBook {
    int series = 0;
    QString key;  // the key form under which the setup file was found
    std::unique_ptr<DbfTable> table;
    MarkBookSetup setup;
    ColumnLists lists;
};

// Opens book N for input: the checks, the first filling from a workbook, the
// rebuild, the setup file and the column lists. On a refusal the system's
// message has been shown and nullptr comes back.
std::unique_ptr<OpenMarkBook> open_mark_book(RecordStore& store, const QStringList& series_row, int series);

}  // namespace veldo
