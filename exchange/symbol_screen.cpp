#include "exchange/symbol_screen.h"

#include <QDir>
#include <algorithm>

#include "exchange/symbol_distribution.h"
#include "reports/print_service.h"
#include "reports/report_run.h"
#include "shell/inactivity.h"
#include "shell/screens.h"
#include "store/run_state.h"
#include "store/series.h"

namespace veldo {

SymbolPrintScreen::SymbolPrintScreen(ShellContext& ctx, PrintService& printer) : ctx_(ctx), printer_(printer) {}

QString SymbolPrintScreen::caption() const {
    return ctx_.run.tr("SIMBOOLVERSPREIDING DRUK", "SYMBOL DISTRIBUTION PRINT");
}

QStringList SymbolPrintScreen::button_captions() const { return {ctx_.run.tr("DRUK", "PRINT"), "EXIT"}; }

QString SymbolPrintScreen::school() const { return ctx_.run.school_name; }

QString SymbolPrintScreen::data_folder() const { return QDir::toNativeSeparators(ctx_.run.data_folder); }

int SymbolPrintScreen::series_list_height() const { return std::min(int(series_.size()) * 300, 5295); }

bool SymbolPrintScreen::load() {
    if (!form_header(ctx_, caption(), &header_)) {
        ctx_.screens.unload(screen::simbole_druk);
        return false;
    }
    series_ = series_rows(ctx_.store);
    return true;
}

void SymbolPrintScreen::leave() {
    ctx_.screens.unload(screen::simbole_druk);
    ctx_.screens.show(screen::punte_menu2);
}

bool SymbolPrintScreen::choose_series(int row) {
    reset_activity(ctx_.run, ctx_.clock);
    if (row < 0 || row >= series_.size()) return false;
    vak_ops_ = series_title(series_[row]);
    series_number_ = 0;
    if (!build_symbol_distribution(ctx_.store, series_[row], row + 1, grid_)) {
        grid_.clear();
        leave();
        return false;
    }
    series_number_ = row + 1;
    return true;
}

bool SymbolPrintScreen::pboek_druk_print() {
    reset_activity(ctx_.run, ctx_.clock);
    if (series_number_ <= 0 || grid_.rows() == 0) return false;
    // The report takes printed rows off the grid it is given: the screen
    // keeps showing its own.
    TextGrid copy = grid_;
    const QStringList row = series_[series_number_ - 1];
    return printer_.print([&](ReportRun& r) { return print_symbol_distribution(r, copy, row); });
}

void SymbolPrintScreen::pboek_druk_exit() { leave(); }

}  // namespace veldo
