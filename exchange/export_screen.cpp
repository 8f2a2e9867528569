#include "exchange/export_screen.h"

#include <QDir>

#include "exchange/export_marks.h"
#include "markbook/setup_file.h"
#include "shell/inactivity.h"
#include "shell/screens.h"
#include "store/run_state.h"
#include "store/series.h"
#include "util/legacy_number.h"

namespace veldo {

MarkBookExport::MarkBookExport(ShellContext& ctx) : ctx_(ctx) {}

QString MarkBookExport::caption() const { return ctx_.run.tr("PUNTEBOEK UITVOER", "MARK BOOK EXPORT"); }

QString MarkBookExport::school() const { return ctx_.run.school_name; }

QString MarkBookExport::data_folder() const { return QDir::toNativeSeparators(ctx_.run.data_folder); }

void MarkBookExport::leave() {
    ctx_.screens.unload(screen::pboek_uitvoer);
    ctx_.screens.show(screen::punte_menu2);
}

bool MarkBookExport::load() {
    if (!has_marks_files(ctx_.run.data_folder)) {
        ctx_.dialogs.message(ctx_.run.tr("Daar is geen punteboeke om uit te voer nie ...",
                                         "There are no marks books to export ..."),
                             MsgIcon::Exclamation);
        leave();
        return false;
    }
    if (!form_header(ctx_, caption(), &header_)) {
        ctx_.screens.unload(screen::pboek_uitvoer);
        return false;
    }
    series_ = series_rows(ctx_.store);
    return true;
}

void MarkBookExport::choose_series(int row) {
    reset_activity(ctx_.run, ctx_.clock);
    if (row < 0 || row >= series_.size()) return;
    const QStringList& s = series_[row];
    series_row_ = row;
    vak_ops_ = s.value(0).trimmed() + " " + s.value(1).trimmed();
    series_list_shown_ = false;

    const QString folder = ctx_.run.data_folder;
    const auto key = find_setup_key(folder, series_key(s), SetupSearch::Readers);
    if (!key) return;  // the list stays as it is
    const MarkBookSetup setup = read_setup_file(QDir(folder).filePath(setup_file_name(*key))).value_or(MarkBookSetup());
    tasks_ = TextGrid(kSetupRows + 1, 7);
    tasks_.set_fixed_rows(1);
    tasks_.set_fixed_cols(0);
    tasks_.set_format_string(
        ctx_.run.tr("UIT|NR.|< TAAK/PROJEK             |^ TOTAAL |^ VERWERK NA |^ UIT TOT |< SIKLUS",
                    "EXP|NO.|< TASK/PROJECT            |^ TOTAL  |^   RESULT   |^ OUT  OF |< CYCLE "));
    for (int r = 1; r <= kSetupRows; ++r) {
        const SetupRow& task = setup.rows[r - 1];
        tasks_.set_text(r, 1, QString::number(r));
        tasks_.set_text(r, 2, task.name);
        tasks_.set_text(r, 3, task.total);
        tasks_.set_text(r, 4, task.target);
        tasks_.set_text(r, 5, task.out_of);
        tasks_.set_text(r, 6, task.cycle);
        tasks_.set_cell_back_colour(r, 2, Val(task.total) > 0 ? 0xC0FFFF : 0xFFFFFF);
    }
    task_list_shown_ = true;
}

bool MarkBookExport::export_task_row(int row) {
    reset_activity(ctx_.run, ctx_.clock);
    if (series_row_ < 0) return false;
    ExportRequest request;
    request.series = series_row_ + 1;
    request.series_row = series_[series_row_];
    request.task = row > 0 && row <= kSetupRows && task_list_shown_ ? row : 0;
    if (request.task > 0) {
        request.folder = ctx_.dialogs.choose_folder(ctx_.run.tr("DATA GIDS VIR UITVOER", "DATA FOLDER FOR EXPORT"),
                                                    ctx_.run.data_folder);
        if (request.folder.trimmed().isEmpty()) {
            leave();
            return false;
        }
    }
    request.progress = [this](int value, int maximum) {
        progress_visible_ = value >= 0;
        progress_max_ = maximum;
        progress_value_ = std::max(0, value);
        if (on_progress) on_progress();
    };
    const bool done = export_task(ctx_.store, request);
    if (progress_visible_) {
        progress_visible_ = false;
        if (on_progress) on_progress();
    }
    return done;
}

void MarkBookExport::pboek_uitvoer_exit() { leave(); }

}  // namespace veldo
