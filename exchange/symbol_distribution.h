#pragma once
// How many learners of a mark book fall in each symbol's percentage range,
// per task, with the average per task: the grid the distribution screen shows
// and prints.

#include <QStringList>

#include "reports/report_run.h"
#include "util/text_grid.h"

namespace veldo {

class RecordStore;


// Builds the grid for series N: heading row, totals row, one row per symbol
// of `pi2_dta.dbf`, the average row. False, with the system's message shown,
// when the marks table or the setup file is missing or the table is an old
// export.
bool build_symbol_distribution(RecordStore& store, const QStringList& series_row, int series, TextGrid& grid);

// Prints a built distribution grid: "SIMBOLE "/"SYMBOLS " and the series'
// title, in landscape. False when the user cancelled the output choice.
bool print_symbol_distribution(ReportRun& r, TextGrid& grid, const QStringList& series_row);

}  // namespace veldo
