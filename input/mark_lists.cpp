#include "input/mark_lists.h"

#include <QDir>
#include <QHash>

#include "input/assessment_input.h"
#include "reports/print_service.h"
#include "reports/report_run.h"
#include "shell/inactivity.h"
#include "shell/screens.h"
#include "store/dbf_table.h"
#include "store/run_state.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/text_grid.h"
#include "util/text_helpers.h"

namespace veldo {

namespace {

QString stored_text(const DbfTable& t, int field) { return toets_null_text(t.value(field)); }

bool counts(const QString& mark) { return !mark.trimmed().isEmpty() && mark.trimmed().toUpper() != "A"; }

}  // namespace

MarkLists::MarkLists(ShellContext& ctx, PrintService& printer) : ctx_(ctx), printer_(printer) {}

void MarkLists::load() {
    items_ = mark_list_items(ctx_.store);
    rows_ = series_rows(ctx_.store);
    vak_ops_ = ctx_.run.tr("DRUK PUNTELYS(TE)", "PRINT MARK LIST(S)");
    series_row_ = -1;
}

QString MarkLists::caption() const { return "VELDO-TALLY : " + ctx_.run.school_name; }

QString MarkLists::data_folder() const { return QDir::toNativeSeparators(ctx_.run.data_folder); }

QStringList MarkLists::captions() const {
    return ctx_.run.language_afrikaans ? QStringList{" DRUKTOTAAL", " DRUKMODUS"}
                                       : QStringList{" PRINT TOTAL", " PRINT MODE"};
}

QStringList MarkLists::order_captions() const {
    return ctx_.run.language_afrikaans ? QStringList{" ALFABETIES", " RANGORDE"} : QStringList{" ALPHABETIC", " "};
}

QStringList MarkLists::button_captions() const {
    return ctx_.run.language_afrikaans ? QStringList{"DRUK", "EXIT"} : QStringList{"PRINT", "EXIT"};
}

bool MarkLists::select_series(int row) {
    reset_activity(ctx_.run, ctx_.clock);
    if (row < 0 || row >= items_.size()) return false;
    series_row_ = row;
    vak_ops_ = items_[row].text;
    druk_tot_ = items_[row].total;
    return true;
}

bool MarkLists::build_list(TextGrid& grid, double* sum, int* count) {
    RunState& run = ctx_.run;
    const bool af = run.language_afrikaans;
    grid = TextGrid(1, 7);
    grid.set_fixed_rows(1);
    grid.set_fixed_cols(0);
    grid.set_font_size(7);
    grid.set_format_string(af ? "<NR|^  T.NR|<LEERDER|>  PUNT|>  TOTAAL|P.S|<FORMATIEWE EVALUERING"
                              : "<NO|^  A.NO|<LEARNER|>  MARK|>   TOTAL|E.K|<FORMATIVE EVALUATION");
    // The name narrower than the cycle list's, so that the formative marks'
    // descriptions have room on a portrait line.
    grid.set_col_width(2, 2700);
    grid.set_col_width(6, 2300);
    *sum = 0;
    *count = 0;
    const int k = series_row_ + 1;
    const QString marks_path = find_ignoring_case(run.data_folder, QString("punte%1.dbf").arg(k));
    if (marks_path.isEmpty()) {
        ctx_.dialogs.message(run.tr("Daar is geen punteleêr PUNTE" + QString::number(k) + ".DBF in " +
                                        data_folder() + " nie.",
                                    "There is no marks file PUNTE" + QString::number(k) + ".DBF in " + data_folder() +
                                        "."),
                             MsgIcon::Critical);
        return false;
    }
    DbfError error;
    auto marks = DbfTable::open(marks_path, &error, DbfAccess::ReadOnly);
    if (marks && marks->field_count() < 3) {
        error = DbfError{DbfError::NoSuchField, marks_path, "EF_PUNT"};
        marks.reset();
    }
    if (!marks) {
        ctx_.dialogs.message(dbf_error_message(error, af), MsgIcon::Critical);
        return false;
    }
    QHash<double, int> rows_by_number;
    for (marks->MoveFirst(); !marks->Eof(); marks->MoveNext()) {
        const QString mark = stored_text(*marks, 2);
        if (counts(mark)) {
            *sum += Val(mark);
            *count += 1;
        }
        const QString number = stored_text(*marks, 0);
        const double n = Val(number);
        if (!rows_by_number.contains(n)) rows_by_number.insert(n, grid.rows());
        grid.add_item(QString::number(grid.rows()) + "\t" + number + "\t" + stored_text(*marks, 1) + "\t" + mark +
                      "\t" + right_justified(format_mask(*sum, "######.0"), 7));
    }

    // The effort keys and formative marks of the assessment table, where
    // there is one; formative codes read as their descriptions where the
    // subject has a list.
    const QString obe_path = find_ignoring_case(run.data_folder, QString("obe_p%1.dbf").arg(k));
    if (!obe_path.isEmpty()) {
        auto obe = DbfTable::open(obe_path, &error, DbfAccess::ReadOnly);
        if (obe && obe->field_count() < 8) {
            error = DbfError{DbfError::NoSuchField, obe_path, obe->field_count() < 4 ? "EO_P_S" : "EO_FE_4"};
            obe.reset();
        }
        if (!obe) {
            ctx_.dialogs.message(dbf_error_message(error, af), MsgIcon::Exclamation);
        } else {
            const QStringList& row = rows_.value(series_row_);
            const QList<LookupItem> list = read_formative_list(
                run.data_folder, row.value(1).trimmed().replace(' ', '_'), row.value(0).trimmed());
            QHash<QString, QString> descriptions;
            qsizetype width = 0;
            for (const LookupItem& item : list) {
                descriptions.insert(item.key, item.text);
                width = std::max(width, item.key.size());
            }
            for (obe->MoveFirst(); !obe->Eof(); obe->MoveNext()) {
                const auto at = rows_by_number.constFind(Val(plain_text(obe->value(0))));
                if (at == rows_by_number.constEnd()) continue;
                grid.set_text(at.value(), 5, stored_text(*obe, 3).trimmed());
                QStringList formative;
                for (int f = kAssessmentFormativeFirst; f <= kAssessmentFormativeLast; ++f) {
                    QString code = stored_text(*obe, f).trimmed();
                    if (code.isEmpty()) continue;
                    if (!list.isEmpty()) code = descriptions.value(code.rightJustified(width, '0'), code);
                    formative << code;
                }
                grid.set_text(at.value(), 6, formative.join(", "));
            }
        }
    }

    if (rank_) {
        // By name, then by mark: equal marks keep the order of the names.
        grid.sort(2, GridSort::StringAscending);
        grid.sort(3, GridSort::NumericDescending);
        double running = 0;
        for (int r = 1; r < grid.rows(); ++r) {
            grid.set_text(r, 0, QString::number(r));
            const double mark = Val(grid.text(r, 3));
            if (mark > 0) running += mark;
            grid.set_text(r, 4, right_justified(format_mask(running, "######.0"), 7));
        }
    }
    return true;
}

bool MarkLists::punte_druk_print() {
    reset_activity(ctx_.run, ctx_.clock);
    if (series_row_ < 0) return false;
    const bool af = ctx_.run.language_afrikaans;
    const QString title = vak_ops_.trimmed();
    const double print_total = Val(druk_tot_);
    // The list is built before the output is chosen, so that a table that
    // can't be read leaves no job half open.
    TextGrid grid;
    double sum = 0;
    int count = 0;
    if (!build_list(grid, &sum, &count)) return false;
    return printer_.print([&](ReportRun& r) {
        r.job.export_stem = (af ? "PUNTELYS " : "MARKLIST ") + series_title(rows_.value(series_row_));
        if (!ask_output_target(r.surface, r.job, r.run, title, r.ask)) return false;
        r.job.new_print_job = true;
        const QString label = af ? "GEMIDDELD := " : "AVERAGE := ";
        // A list with no marks has no average, and a print total of 0 no
        // percentage: those lines are left out rather than divided by zero.
        const double average = count > 0 ? sum / count : 0;
        const QString average_text = format_mask(average, "###.0");
        const QString percent_text = print_total != 0 ? format_mask(average / (print_total / 100), "###.0") + "%" : "";
        if (r.job.output_to_excel && count > 0) {
            grid.set_rows(grid.rows() + 3);
            grid.set_text(grid.rows() - 2, 2, label.trimmed());
            grid.set_text(grid.rows() - 2, 3, average_text);
            grid.set_text(grid.rows() - 1, 3, percent_text);
        }
        print_grid_pages(r, grid, title, kPortrait, GridReportOptions{}, false, PageFoot{10, false});
        if (!r.job.output_to_excel && count > 0) {
            r.surface.set_CurrentY(r.surface.CurrentY() + 2);
            r.surface.set_CurrentX(5);
            r.surface.print_text(label, true);
            r.surface.set_CurrentX(20);
            r.surface.print_text(average_text);
            if (!percent_text.isEmpty()) {
                r.surface.set_CurrentX(20);
                r.surface.print_text(percent_text);
            }
        }
        end_of_print(r.surface, r.job, r.run);
        return true;
    });
}

void MarkLists::punte_druk_exit() {
    ctx_.screens.unload(screen::punte_druk);
    ctx_.screens.show(screen::punte_menu1);
}

}  // namespace veldo
