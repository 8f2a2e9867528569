#pragma once
// A mark typed into a cell of the mark book: judged against its column's
// total, stored at once, and added to the running figure of the column it
// feeds. The running figure is the bare sum in the units of the marks; only
// a recalculation makes the totals right.

#include <QString>

#include "markbook/column_lists.h"

namespace veldo {

class DbfTable;
struct RunState;

enum class TypedMark {
    Stored,    // written, with the running figure
    Refused,   // out of range: beep and the system's message, nothing written
    Failed,    // the table refused the write (its last_error() says why)
};

// "Punte kan slegs ' ', 'A', 'a' of 0-<T> wees" / "Marks can only be ' ',
// 'A', 'a' or 0-<T>", T as the setup holds the column's total.
QString mark_range_message(const RunState& run, const ColumnLists& lists, int column);

// Stores `typed` in field `column` of the table's current record. "A" and
// "a" are stored as they stand and leave the running figure alone; a number
// from 0 to the column's total is stored with one decimal ("12x" is 12.0)
// and moves the figure of the column's target by the difference from the old
// mark; an emptied cell counts as 0 there and is stored blank. A refusal
// beeps and shows the range message through run.dialogs.
TypedMark store_typed_mark(RunState& run, DbfTable& marks, const ColumnLists& lists, int column,
                           const QString& typed);

}  // namespace veldo
