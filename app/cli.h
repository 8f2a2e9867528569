#pragma once
// The command-line face: `veldo-tally <word> [options]`. Each word runs the
// same routines the screens call, with a dialog service that answers Yes and
// prints every message on standard error.

#include <QString>
#include <QStringList>

namespace veldo {

// Runs one command line (without the program name). Returns the exit code:
// 0 done, 1 refused with the system's message, 2 bad usage.
int run_command_line(const QStringList& arguments, const QString& application_folder);
QString usage_text();

}  // namespace veldo
