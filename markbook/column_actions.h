#pragma once
// The actions on a whole column of an open mark book: scaling to a new class
// average, copying one column to another, pasting a column of text, and the
// list in order of merit. Each reads the table once and writes it once; none
// recalculates the totals (that is the teacher's next step).

#include <QString>
#include <QStringList>

#include "markbook/column_lists.h"
#include "util/text_grid.h"

namespace veldo {

class DbfTable;
struct RunState;

// "Verskalings nie moontlik op totaalkolomme nie ..." / "Scaling not possible
// on total columns ..."
QString scaling_total_column_message(const RunState& run);
// The input box's prompt: "Current average <cur>\r\n\r\nNew average ...".
QString scaling_prompt(const RunState& run, double current);

// Moves every mark of `column` by the same number of percentage points, so
// that a class at `current` percent would stand at `wanted`; each mark is
// clamped to 0..total and stored with one decimal. "A", "a" and empty cells
// stay as they are. False, nothing written, when the table can't be taken or
// written (last_error() says why); a column with a total of 0 changes
// nothing.
bool scale_column(DbfTable& marks, const ColumnLists& lists, int column, double current, double wanted);

// "WIL U DEFNITIEF PUNTE VANAF \r\n<from> KOPIEER NA <to> ?" / "DO YOU WISH TO
// COPY MARK BOOK SETUP FOR <from> TO <to> ?"
QString copy_column_question(const RunState& run, const QString& from, const QString& to);
// Every record's field `to` takes field `from` as it stands.
bool copy_column(DbfTable& marks, int from, int to);

// "Kies eers puntkolom waarin punte kopieer moet word !" / "First select
// marks column into which marks must be pasted !"
QString paste_no_column_message(const RunState& run);
// The warning before a paste, its lines joined by line ends.
QString paste_warning(const RunState& run);
// Pastes `text`, one line per learner in table order, into field `column`:
// each line's number with one decimal, a line that is no number 0.0, a
// negative number left out; learners past the last line get 0.0.
bool paste_column(DbfTable& marks, int column, const QString& text);

// The merit list of `column`: one row per learner (number, name, mark as it
// stands), highest mark first; learners with equal marks keep table order.
TextGrid merit_list(DbfTable& marks, int column);

}  // namespace veldo
