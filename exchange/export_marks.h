#pragma once
// Sending one task column of a mark book back to the administration program:
// each mark, converted to the series' total, is appended to `punte<N>.dbf`
// and `obe_p<N>.dbf` in the chosen folder.

#include <QString>
#include <QStringList>
#include <functional>

#include "markbook/setup_model.h"

namespace veldo {

class RecordStore;

// A mark as it goes over: unchanged for a series total of 0, a blank or an
// absence; else Round(Val(mark) / task_total * series_total, 1), ties to even.
QString convert_export_mark(const QString& mark, double task_total, double series_total);

struct ExportRequest {
    int series = 0;             // N
    QStringList series_row;     // the vak_grid row
    int task = 0;               // the setup row, 1 to 40; 0 = none chosen
    QString folder;             // the chosen data folder; becomes the run's data folder
    // The progress bar: (0, records) when the walk starts, (n, records)
    // after each learner, (-1, records) when the bar goes.
    std::function<void(int value, int maximum)> progress;
};

// The export as the screen does it after the folder choice: the question,
// the appends, the closing copy of the marks table to the drive root and the
// message. False when it was refused or stopped; the user has been told.
bool export_task(RecordStore& store, const ExportRequest& request);

}  // namespace veldo
