#include "store/dbf_open.h"

#include <QDir>
#include <QFile>

#include "store/locks.h"
#include "store/record_store.h"
#include "util/file_lookup.h"

namespace veldo {

std::unique_ptr<DbfTable> open_dbf_table(RecordStore& store, const QString& folder, const QString& table,
                                         DbfError* error) {
    RunState& run = store.run();
    QString drive = folder.trimmed().isEmpty() ? run.drive_root : store.drive_of(folder);
    if (!store.drive_exists(drive)) {
        if (run.dialogs) run.dialogs->message(network_drive_message(run, drive), MsgIcon::Critical);
        throw ProgramEnd{1};
    }
    read_network_switch(run);
    if (!folder.trimmed().isEmpty() && !folder_exists(folder)) QDir().mkpath(folder);

    const QString name = table + ".dbf";
    copy_table_templates(run.start_folder, folder, table);
    auto opened = DbfTable::open(path_ignoring_case(folder, name), error);
    if (opened && opened->RecordCount() == 0 && opened->Eof()) {
        // An empty table is made afresh from its template. The template
        // replaces the file in one step, so a failed copy leaves the old
        // (empty) table rather than none; with no template it goes.
        const QString path = opened->path();
        opened->Close();
        opened.reset();
        const QString tmpl = find_ignoring_case(run.start_folder, table + ".org");
        if (tmpl.isEmpty()) {
            QFile::remove(path);
            if (error) *error = DbfError{DbfError::Missing, path, QString()};
            return nullptr;
        }
        copy_template_over(tmpl, path);
        const QString memo_template = find_ignoring_case(run.start_folder, table + ".ort");
        if (!memo_template.isEmpty()) copy_template_over(memo_template, path_ignoring_case(folder, table + ".dbt"));
        opened = DbfTable::open(path, error);
    }
    // A data set that may not be written ends the run, as on the family's
    // other programs: someone must set it right before work goes on.
    if (opened && opened->is_read_only()) refuse_read_only_data_set(run, opened->path());
    if (opened) {
        opened->MoveLast();
        opened->MoveFirst();
    }
    return opened;
}

std::unique_ptr<DbfTable> open_table_to_write(RunState& run, const QString& path, DbfError* error) {
    auto opened = DbfTable::open(path, error);
    if (opened && opened->is_read_only()) refuse_read_only_data_set(run, opened->path());
    return opened;
}

}  // namespace veldo
