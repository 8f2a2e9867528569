#include "markbook/mark_book_print_screen.h"

#include <QDir>

#include "markbook/mark_book_print.h"
#include "markbook/marks_table.h"
#include "markbook/setup_file.h"
#include "reports/print_service.h"
#include "shell/screens.h"
#include "store/dbf_table.h"
#include "store/run_state.h"
#include "store/series.h"
#include "store/table_layouts.h"
#include "util/file_lookup.h"

namespace veldo {

MarkBookPrintScreen::MarkBookPrintScreen(ShellContext& ctx, PrintService& printer) : ctx_(ctx), printer_(printer) {}

MarkBookPrintScreen::~MarkBookPrintScreen() = default;

QString MarkBookPrintScreen::caption() const { return ctx_.run.tr("PUNTEBOEK DRUK", "MARK BOOK PRINT"); }

QStringList MarkBookPrintScreen::button_captions() const { return {ctx_.run.tr("DRUK", "PRINT"), "EXIT"}; }

bool MarkBookPrintScreen::load() {
    if (!form_header(ctx_, caption(), &header_)) {
        ctx_.screens.unload(screen::pboek_druk);
        return false;
    }
    series_ = series_rows(ctx_.store);
    if (ctx_.run.print_series_row >= 0) return open_print_series(ctx_.run.print_series_row);
    return true;
}

void MarkBookPrintScreen::leave() {
    table_.reset();
    ctx_.screens.unload(screen::pboek_druk);
    ctx_.screens.show(screen::punte_menu2);
}

bool MarkBookPrintScreen::open_print_series(int row) {
    if (row < 0 || row >= series_.size()) return false;
    RunState& run = ctx_.run;
    row_ = row;
    vak_ops_ = series_title(series_[row]);
    const QString path = find_ignoring_case(run.data_folder, marks_table_name(row + 1));
    if (path.isEmpty()) {
        ctx_.dialogs.message(no_mark_book_message(run), MsgIcon::Exclamation);
        leave();
        return false;
    }
    if (!table_ || table_->path() != path) {
        DbfError error;
        table_ = DbfTable::open(path, &error, DbfAccess::ReadOnly);
        if (!table_) {
            ctx_.dialogs.message(dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
            leave();
            return false;
        }
    }
    if (table_->field_count() < kMarkBookFieldCount) {
        ctx_.dialogs.message(old_export_message(run), MsgIcon::Exclamation);
        leave();
        return false;
    }
    return true;
}

bool MarkBookPrintScreen::pboek_druk_print() {
    if (!table_ || row_ < 0) return false;
    RunState& run = ctx_.run;
    const auto key = find_setup_key(run.data_folder, series_key(series_[row_]), SetupSearch::Readers);
    if (!key) {
        ctx_.dialogs.message(no_setup_message(run, 1), MsgIcon::Exclamation);
        leave();
        return false;
    }
    const MarkBookSetup setup =
        read_setup_file(QDir(run.data_folder).filePath(setup_file_name(*key))).value_or(MarkBookSetup());
    table_->Refresh();
    const QString title = vak_ops_;
    const bool printed = printer_.print([&](ReportRun& r) { return print_mark_book(r, setup, *table_, title); });
    vak_ops_.clear();
    return printed;
}

void MarkBookPrintScreen::pboek_druk_exit() { leave(); }

}  // namespace veldo
