#include "shell/change_folder.h"

#include <QFile>

#include "shell/inactivity.h"
#include "shell/screens.h"
#include "store/record_store.h"
#include "util/file_lookup.h"
#include "util/quoted_values.h"
#include "util/safe_file.h"
#include "util/text_helpers.h"

namespace veldo {

namespace {

QList<QuotedLine> read_lines(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? read_quoted_lines(f.readAll()) : QList<QuotedLine>();
}

}  // namespace

bool remember_data_folder(const RunState& run, const QString& folder, bool create) {
    const QString found = find_ignoring_case(folder, "user_info.txt");
    if (found.isEmpty() && !create) return true;
    QList<QuotedLine> lines = found.isEmpty() ? QList<QuotedLine>() : read_lines(found);
    while (lines.size() < 3) lines.append(QuotedLine{QuotedValue::of_text(QString())});
    lines[0] = QuotedLine{QuotedValue::of_text(run.data_folder)};
    return write_file_atomic(found.isEmpty() ? run.in_folder(folder, "user_info.txt") : found,
                             write_quoted_lines(lines.mid(0, 3)));
}

QString ChangeFolder::caption() const { return ctx_.run.tr("WYSIG DATA GIDS", "CHANGE DATA FOLDER"); }

QString ChangeFolder::refused_hint() const {
    return ctx_.run.tr("Die gids " + ctx_.run.data_folder +
                           " bevat nie punteleêrs nie.\nSluit hierdie venster en kies 'n ander gids met DATA GIDS op die menu.",
                       "The folder " + ctx_.run.data_folder +
                           " does not contain marks files.\nClose this window and choose another folder with DATA FOLDER on the menu.");
}

void ChangeFolder::load() {
    loaded_ = true;
    RunState& run = ctx_.run;
    const QString found = find_ignoring_case(run.program_folder, "user_info.txt");
    const QList<QuotedLine> info = found.isEmpty() ? QList<QuotedLine>() : read_lines(found);
    const QString remembered = !info.isEmpty() && !info[0].isEmpty() ? info[0][0].as_text() : QString();

    QString chosen = ctx_.dialogs.choose_folder(caption(), remembered.trimmed());
    while (chosen.size() > 1 && (chosen.endsWith('/') || chosen.endsWith('\\'))) chosen.chop(1);
    run.data_folder = chosen;
    if (run.data_folder.trimmed().isEmpty()) {
        unload();
        return;
    }
    if (!file_exists_ignoring_case(run.data_folder, "Exp_Mrk_control.txt")) {
        ctx_.dialogs.message(run.tr("Gekose gids (" + run.data_folder + ") bevat nie punteleêrs nie ...",
                                    "Selected folder (" + run.data_folder + ") does not contain marks files ..."),
                             MsgIcon::Critical);
        return;  // the screen stays open and empty; the pick stands
    }
    const QString drive = ctx_.store.drive_of(run.data_folder);
    write_file_atomic(run.in_folder(run.program_folder, "last_drive.txt"),
                      write_quoted_lines({{QuotedValue::of_text(drive)}}));
    remember_data_folder(run, run.program_folder, true);
    unload();
}

void ChangeFolder::unload() {
    if (!loaded_) return;
    loaded_ = false;
    reset_activity(ctx_.run, ctx_.clock);
    ctx_.screens.unload(screen::change_folder);
}

}  // namespace veldo
