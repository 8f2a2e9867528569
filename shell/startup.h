#pragma once
// Start-up without windows: the folder search, the family folder and its
// shared files, the daily version stamp, the language of `setup.txt`, the
// time-out limit and the school's name. The splash and the frame call these;
// so does the command line.

#include <QString>

#include "store/run_state.h"

namespace veldo {

class RecordStore;

// The program's own name in the family's tables and folders.
inline const QString kProgramName = QStringLiteral("VELDO-TALLY");
QString program_version();  // "1.0.0"

// `time_out.txt` in the program folder, else 300 seconds.
float read_timeout_seconds(const QString& program_folder);

// The folder search: program, root and family folders from the folder of
// the executable, the sibling programs' shared files, `path_names.txt`, the
// product folder and the version stamp.
void refresh_machine_paths(RunState& run, const QString& application_folder);
// Copies a sibling's shared text files into the family folder (an empty name
// copies the installer's into the family folder itself). Existing files stay.
void copy_family_files(RunState& run, const QString& name);
// Writes `Version_Numbers.txt` and `.dte` unless today's stamp is there.
void stamp_versions(RunState& run);

// The language flag of the family's `setup.txt`; the program folder's copy
// is brought over first when the family has none. Read errors keep the flag.
void read_setup_language(RunState& run);
// Writes the flag back to line 2, keeping every other item.
bool save_setup_language(RunState& run);

// `school_name` from the school record at the school folder (the drive root
// while the school folder is still empty).
void read_school_name(RunState& run, RecordStore& store);

// The splash's share of the start: paths, program folder, year, language,
// school name. The current folder becomes the program folder.
void run_startup(RunState& run, RecordStore& store, const QString& application_folder);

}  // namespace veldo
