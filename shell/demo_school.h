#pragma once
// A sample school for trying the program out: a data folder as the
// administration program prepares it (mark series, class lists, assessment
// tables, symbols), a few mark books already set up with marks, and the
// school record at the drive root.

#include <QString>
#include <QStringList>

namespace veldo {

struct RunState;

struct DemoResult {
    bool ok = false;
    QString message;       // what went wrong, in the user's language
    QStringList written;   // files written, for the summary
};

DemoResult write_demo_school(RunState& run, const QString& data_folder);

}  // namespace veldo
