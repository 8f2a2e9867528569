#pragma once
// The arithmetic of a mark book: every total column worked out from the
// columns that feed it, rescaled so that an absent mark doesn't count against
// a learner, and the class average of every column. The order of the steps is
// the result: rounding to one decimal happens between them.

#include <array>
#include <functional>

#include "markbook/column_lists.h"
#include "util/legacy_number.h"

namespace veldo {

class DbfTable;

// Recalculates every total of every record of the open marks table, in table
// order, and writes the table once at the end. `progress` (optional) hears
// how many records are done out of how many. False when the table can't be
// taken (another workstation holds it, it is read-only) or the write failed;
// the table's last_error() says why, and the table on disk is as it was.
bool recalculate_totals(DbfTable& marks, const ColumnLists& lists,
                        const std::function<void(int done, int count)>& progress = {});

// The class average of each column as a percentage of its total, by field
// index (0 to 42); 0 where a column has no marks or no total.
std::array<Currency, 43> class_averages(DbfTable& marks, const ColumnLists& lists);

}  // namespace veldo
