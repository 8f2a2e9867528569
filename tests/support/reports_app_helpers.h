#pragma once
// What the program's whole-run tests share: a table read back as a reader
// finds it, and a run of the program under strace.

#include "store/dbf_table.h"
#include "tests/support/program_run.h"
#include "util/text_helpers.h"

namespace veldo::testing {

// Every record of the table at `path` as its fields' trimmed texts; a table
// that can't be opened is one row saying why.
inline QList<QStringList> table_rows(const QString& path) {
    DbfError error;
    auto t = DbfTable::open(path, &error);
    if (!t) return {{"unreadable: " + dbf_error_message(error, false)}};
    QList<QStringList> rows;
    for (t->MoveFirst(); !t->Eof(); t->MoveNext()) {
        QStringList r;
        for (int f = 0; f < t->field_count(); ++f) r << toets_null_text(t->value(f)).trimmed();
        rows << r;
    }
    return rows;
}

// Starts the program with `arguments` under strace on drive root `drive`,
// logging the calls in `trace` to `log` (strace's own options in `more`).
inline void start_traced(QProcess& p, const QString& drive, const QString& trace, const QString& log,
                         const QStringList& arguments, const QStringList& more = {}) {
    p.setProcessEnvironment(program_environment(drive));
    p.start("strace", QStringList{"-f", "-qq", "-e", "trace=" + trace, "-o", log} + more + QStringList{VELDO_PROGRAM} +
                          arguments);
}

}  // namespace veldo::testing
