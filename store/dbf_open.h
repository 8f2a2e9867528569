#pragma once
// The family's opener of a dBASE table in a folder: the drive test, the
// network switch, a missing folder made, a missing table made from its
// template beside the program, and an empty table made afresh.

#include <QString>
#include <memory>

#include "store/dbf_table.h"

namespace veldo {

class RecordStore;
struct RunState;

// Opens `<table>.dbf` in `folder`, walked to its end and back to the first
// record. A vanished drive shows the network message, and a table that may
// not be written the read-only data-set message; both end the program
// (ProgramEnd). Returns nullptr, with `error`, when there is no table even
// after the template copy; the caller reports it in its own words.
std::unique_ptr<DbfTable> open_dbf_table(RecordStore& store, const QString& folder, const QString& table,
                                         DbfError* error = nullptr);

// Opens a table this system writes, by its path. One that may not be written
// shows the read-only data-set message and ends the program (ProgramEnd),
// before anything is changed; nullptr, with `error`, when it can't be opened.
std::unique_ptr<DbfTable> open_table_to_write(RunState& run, const QString& path, DbfError* error = nullptr);

}  // namespace veldo
