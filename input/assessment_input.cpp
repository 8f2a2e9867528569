#include "input/assessment_input.h"

#include <QFile>
#include <QFileInfo>

#include "reports/print_service.h"
#include "reports/report_run.h"
#include "shell/screens.h"
#include "store/dbf_open.h"
#include "store/dbf_table.h"
#include "store/record_store.h"
#include "util/cp1252.h"
#include "util/file_lookup.h"
#include "util/quoted_values.h"
#include "util/safe_file.h"
#include "util/text_grid.h"
#include "util/text_helpers.h"

namespace veldo {

namespace {

QString stored_text(const DbfTable& t, int field) { return toets_null_text(t.value(field)); }

}  // namespace

QList<LookupItem> read_effort_keys(ShellContext& ctx, const QString& base) {
    const QString name = "L" + base + "_P_S";
    const QString found = find_ignoring_case(ctx.run.data_folder, name + ".dbf");
    // An existing list is only read; a missing one comes from its template
    // beside the program, where there is one.
    std::unique_ptr<DbfTable> table = found.isEmpty() ? open_dbf_table(ctx.store, ctx.run.data_folder, name)
                                                      : DbfTable::open(found, nullptr, DbfAccess::ReadOnly);
    QList<LookupItem> items;
    if (!table || table->field_count() < 2) return items;
    for (table->MoveFirst(); !table->Eof(); table->MoveNext()) {
        const QString key = stored_text(*table, 0).trimmed();
        if (!key.isEmpty()) items.append({key, stored_text(*table, 1).trimmed()});
    }
    items.append({"   ", ctx.run.tr("GEEN", "NONE")});
    return items;
}

QList<LookupItem> read_formative_list(const QString& folder, const QString& base, const QString& extension) {
    QString ext = extension;
    ext.remove('/').remove('-');
    QList<LookupItem> items;
    QFile f(find_ignoring_case(folder, "L" + base + "_f_e." + ext));
    if (f.fileName().isEmpty() || !f.open(QIODevice::ReadOnly)) return items;
    QStringList lines = cp1252::decode(f.readAll()).split('\n');
    for (QString& l : lines)
        if (l.endsWith('\r')) l.chop(1);
    if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
    qsizetype width = 0;
    for (qsizetype i = 0; i < lines.size(); i += 2) {
        items.append({lines[i].trimmed(), lines.value(i + 1).trimmed()});
        width = std::max(width, items.last().key.size());
    }
    for (LookupItem& item : items) item.key = item.key.rightJustified(width, '0');
    return items;
}

QString AssessmentInput::caption() const { return ctx_.run.tr("UGO INLEES", "OBE INPUT"); }

QString AssessmentInput::screen_name() const { return screen::obe_inlees; }

QStringList AssessmentInput::mode_captions() const {
    if (ctx_.run.language_afrikaans)
        return {"SUMMATIEWE EVALUERING", "PRESTASIESLEUTELS", "FORMATIEWE EVALUERING", "MULTI-ASSESSERING"};
    return {"SUMMATIVE EVALUATION", "EFFORT KEYS", "FORMATIVE EVALUATION", "MULTI ASSESSMENT"};
}

QStringList AssessmentInput::info_captions() const {
    return ctx_.run.language_afrikaans ? QStringList{"VERTOON PS-LYS", "VERTOON FE-LYS"}
                                       : QStringList{"DISPLAY EK-LIST", "DISPLAY FE-LIST"};
}

QStringList AssessmentInput::info_tips() const {
    if (ctx_.run.language_afrikaans)
        return {" Selekteer/Deselekteer Prestasiesleutel opsoektabelle ",
                " Selekteer/Deselekteer Formatiewe Evaluering opsoektabelle "};
    return {" Select/Deselect Effort Keys search tables ", " Select/Deselect Formative Evaluation search tables "};
}

void AssessmentInput::remember_user_info() {
    const QString found = find_ignoring_case(ctx_.run.data_folder, "user_info.txt");
    QFile f(found);
    if (found.isEmpty() || !f.open(QIODevice::ReadOnly)) return;
    const QList<QuotedLine> lines = read_quoted_lines(f.readAll());
    ps_info_ = lines.size() > 1 && !lines[1].isEmpty() && lines[1][0].as_bool();
    fe_info_ = lines.size() > 2 && !lines[2].isEmpty() && lines[2][0].as_bool();
}

void AssessmentInput::write_user_info() {
    const QString found = find_ignoring_case(ctx_.run.data_folder, "user_info.txt");
    const QList<QuotedLine> lines{{QuotedValue::of_text(ctx_.run.data_folder)},
                                  {QuotedValue::of_bool(ps_info_)},
                                  {QuotedValue::of_bool(fe_info_)}};
    QString why;
    const QString path = found.isEmpty() ? ctx_.run.in_folder(ctx_.run.data_folder, "user_info.txt") : found;
    if (!write_file_atomic(path, write_quoted_lines(lines), &why))
        ctx_.dialogs.message(ctx_.run.tr("Kan nie " + path + " skryf nie: " + why, "Can't write " + path + ": " + why),
                             MsgIcon::Exclamation);
}

void AssessmentInput::set_ps_info(bool on) {
    activity();
    ps_info_ = on;
    write_user_info();
}

void AssessmentInput::set_fe_info(bool on) {
    activity();
    fe_info_ = on;
    write_user_info();
}

bool AssessmentInput::layout_fits(const DbfTable& table, DbfError* error) const {
    for (int f = 0; f <= kAssessmentFormativeLast; ++f) {
        if (f < table.field_count() && (f == kClassListNumber || table.field(f).type == DbfType::Character)) continue;
        static const char* names[] = {"EO_T_NR", "EO_NAME", "EO_PUNT", "EO_P_S",
                                      "EO_FE_1", "EO_FE_2", "EO_FE_3", "EO_FE_4"};
        *error = DbfError{DbfError::NoSuchField, table.path(), names[f]};
        return false;
    }
    return true;
}

bool AssessmentInput::input_total_chosen() {
    choosing_mode_ = true;
    return true;
}

bool AssessmentInput::io_ok(int mode) {
    activity();
    if (!choosing_mode_) return false;
    choosing_mode_ = false;
    if (mode < Summative || mode > MultiAssessment) {
        marks_exit();
        return false;
    }
    mode_ = mode;
    return open_chosen();
}

QString AssessmentInput::list_base_name() const { return series_.value(subject_row_).value(1).trimmed().replace(' ', '_'); }

QString AssessmentInput::list_extension() const {
    return series_.value(subject_row_).value(0).trimmed().remove('/').remove('-');
}

void AssessmentInput::before_sort() {
    effort_keys_ = read_effort_keys(ctx_, list_base_name());
    formative_ = read_formative_list(ctx_.run.data_folder, list_base_name(), list_extension());
    if (input_total_ != subject_total_)
        ctx_.dialogs.message(ctx_.run.tr("Besig om punte van" + number_text(subject_total_) + " na" +
                                             number_text(input_total_) + " te verwerk!",
                                         "Busy converting marks from" + number_text(subject_total_) + " to" +
                                             number_text(input_total_) + "!"),
                             MsgIcon::Exclamation, MsgButtons::AbortRetryIgnore);
}

bool AssessmentInput::column_shown(int column) const {
    if (column < 2) return true;
    switch (mode_) {
        case Summative: return column == kClassListMark;
        case EffortKeys: return column == kAssessmentKey;
        case Formative: return column >= kAssessmentFormativeFirst && column <= kAssessmentFormativeLast;
        case MultiAssessment: return column <= kAssessmentFormativeLast;
        default: return false;
    }
}

QString AssessmentInput::heading(int column) const {
    const bool af = ctx_.run.language_afrikaans;
    switch (column) {
        case 0: return af ? "T-NR" : "A-NO";
        case 1: return af ? "LEERDER" : "LEARNER";
        case 2: return (af ? "PUNT(" : "MARK(") + number_text(input_total_) + ")";
        case 3: return af ? "P-S " : "E-K ";
        default:
            return column >= kAssessmentFormativeFirst && column <= kAssessmentFormativeLast
                       ? QString("F-E%1").arg(column - kAssessmentFormativeFirst + 1)
                       : QString();
    }
}

int AssessmentInput::first_shown_from(int column) const {
    for (int c = column; c <= kAssessmentFormativeLast; ++c)
        if (column_shown(c)) return c;
    return kClassListMark;
}

int AssessmentInput::column_entered(int column, int) const {
    return first_shown_from(column < 2 ? 2 : column);
}

std::pair<int, int> AssessmentInput::next_cell(int row, int column) const {
    for (int c = column + 1; c <= kAssessmentFormativeLast; ++c)
        if (column_shown(c)) return {row, c};
    return {row + 1 < learner_count() ? row + 1 : row, first_shown_from(2)};
}

AssessmentInput::Lookup AssessmentInput::lookup_for(int column) const {
    if (column == kAssessmentKey && ps_info_) return EffortKeyList;
    if (column > kAssessmentKey && column <= kAssessmentFormativeLast && fe_info_) return FormativeList;
    return NoList;
}

int AssessmentInput::lookup_row(Lookup list, const QString& value) const {
    const QList<LookupItem>& items = list == EffortKeyList ? effort_keys_ : formative_;
    if (list == NoList) return -1;
    for (int i = 0; i < items.size(); ++i)
        if (items[i].key.trimmed() == value.trimmed()) return i;
    return -1;
}

bool AssessmentInput::choose_lookup(Lookup list, int item, int row, int column) {
    const QList<LookupItem>& items = list == EffortKeyList ? effort_keys_ : formative_;
    if (list == NoList || item < 0 || item >= items.size()) return false;
    return cell_changed(row, column, items[item].key);
}

bool AssessmentInput::copy_into_partner() {
    // Each mark back into punte<K>.dbf by admission number; the effort keys
    // and formative marks stay here.
    return copy_marks_into(
        "PUNTE", "ef_t_nr", "ef_punt", [](const QVariant& number) { return QVariant(plain_text(number).trimmed()); },
        [](const QVariant& stored) {
            const QString mark = toets_null_text(stored);
            if (mark == "a" || mark == "A" || mark.trimmed().isEmpty()) return stored;
            return QVariant(format_mask(Val(mark), "##0.0"));
        });
}

QString AssessmentInput::undo_warning() const {
    return ctx_.run.tr("'UNDO' sal punte na vorige waardes herstel!", "'UNDO' will reset marks to previous values!");
}

QStringList AssessmentInput::paste_warning() const {
    QStringList lines = MarksInput::paste_warning();
    if (ctx_.run.language_afrikaans) {
        lines[0] = "Hierdie funksie sal blindelings enige inligting wat in die Windows 'clipboard' is";
        lines[3] = "in PRESIES dieselfde volgorde as die leerders op die skerm is nie.";
    }
    return lines;
}

QString AssessmentInput::paste_heading() const { return ctx_.run.tr("'PASTE'", "PASTE"); }

QStringList AssessmentInput::paste_targets() const {
    return {"SUMMATIEWE EVALUERING", "PRESTASIESLEUTELS", "FORMATIEWE EVALUERING"};
}

QString AssessmentInput::paste_tool_tip() const {
    return ctx_.run.tr(" 'PASTE clipboard' in puntelêer ", " PASTE clipboard into marks file ");
}

QString AssessmentInput::cancel_caption() const { return ctx_.run.tr("KANSELLEER", "CANCEL"); }

void AssessmentInput::pr_ok(int target) {
    activity();
    if (!pasting_) return;
    pasting_ = false;
    if (!open_ || target < 0 || target > 2) return;
    paste_column(target == 0 ? kClassListMark : target == 1 ? kAssessmentKey : kAssessmentFormativeFirst,
                 target == 0);
}

void AssessmentInput::fill_print_grid(TextGrid& grid) {
    QList<int> columns;
    for (int c = 0; c <= kAssessmentFormativeLast; ++c)
        if (column_shown(c)) columns << c;
    grid = TextGrid(1, int(columns.size()));
    grid.set_fixed_rows(1);
    grid.set_fixed_cols(0);
    for (int i = 0; i < columns.size(); ++i) grid.set_text(0, i, heading(columns[i]).trimmed());
    if (!table_) return;
    DbfTable& t = *table_;
    for (t.MoveFirst(); !t.Eof(); t.MoveNext()) {
        QStringList cells;
        for (int c : columns) cells << stored_text(t, c).trimmed();
        grid.add_item(cells.join('\t'));
    }
    t.MoveFirst();
}

bool AssessmentInput::marks_print() {
    activity();
    if (!table_ || subject_row_ < 0) return false;
    TextGrid grid;
    fill_print_grid(grid);
    const int mark_column = column_shown(kClassListMark) ? kClassListMark : -1;
    const bool printed = printer_.print([&](ReportRun& r) {
        const bool chosen = print_marks_list(r, series_title(), vak_ops_, kPortrait, grid, mark_column);
        if (chosen) list_printed_ = true;
        return chosen;
    });
    go_to(0);
    return printed;
}

bool print_marks_list(ReportRun& r, const QString& title, const QString& subtitle, const QString& paper,
                      TextGrid& grid, int mark_column) {
    const bool af = r.run.language_afrikaans;
    r.job.export_stem = (af ? "PUNTE " : "MARKS ") + title;
    if (!ask_output_target(r.surface, r.job, r.run, title, r.ask)) return false;
    r.job.new_print_job = true;

    int count = 0;
    double sum = 0;
    for (int row = 1; row < grid.rows() && mark_column >= 0; ++row) {
        const QString mark = grid.text(row, mark_column).trimmed();
        if (mark.isEmpty() || mark.toUpper() == "A") continue;
        sum += Val(mark);
        ++count;
    }
    const QString totals_label = af ? "TOTALE LEERDERS/PUNTE" : "TOTAL NUMBER OF LEARNERS/MARKS";
    const QString average_label = af ? "GEMIDDELD" : "AVERAGE";
    const QString count_text = format_mask(count, "####.0");
    const QString sum_text = format_mask(sum, "####.0");
    const QString average_text = format_mask(count > 0 ? sum / count : 0, "###.0");

    if (r.job.output_to_excel) {
        // A workbook takes the grid itself, the totals as its last rows.
        grid.set_rows(grid.rows() + 3);
        grid.set_text(grid.rows() - 2, 1, totals_label);
        grid.set_text(grid.rows() - 2, 2, count_text + " / " + sum_text);
        grid.set_text(grid.rows() - 1, 1, average_label);
        grid.set_text(grid.rows() - 1, 2, average_text);
        print_grid_pages(r, grid, title, paper, GridReportOptions{}, false, PageFoot{10, false});
        end_of_print(r.surface, r.job, r.run);
        return true;
    }

    // Every field right-aligned to the widest text of its column.
    QList<int> widths(grid.cols(), 0);
    for (int row = 0; row < grid.rows(); ++row)
        for (int c = 0; c < grid.cols(); ++c) widths[c] = std::max(widths[c], int(grid.text(row, c).size()));
    const auto line_of = [&](int row) {
        QStringList fields;
        for (int c = 0; c < grid.cols(); ++c) fields << right_justified(grid.text(row, c), widths[c]);
        return fields.join(QString(QChar(0x00A6)));
    };
    PageHeadOptions head;
    head.paper = paper;
    const auto list_head = [&] {
        reset_print_font(r.surface);
        r.surface.print_text(af ? "DRUK PUNTE" : "PRINT MARKS", true);
        r.surface.set_CurrentX(float(r.job.line_width - 14));
        r.surface.print_text((af ? "BLADSY : " : "PAGE : ") + QString::number(r.surface.Page()));
        r.surface.print_text(line_of(0));
    };
    for (int row = 1; row < grid.rows() || row == 1; ++row) {
        const bool page_full = row > 1 && r.surface.CurrentY() >= r.surface.ScaleHeight() - 5;
        if (page_full) {
            reset_print_font(r.surface);
            r.surface.print_text(QString());
            r.surface.set_CurrentX(float(r.job.line_width - 8));
            r.surface.print_text(QString::number(r.surface.Page()) + ".../");
            r.surface.NewPage();
            r.job.new_print_job = true;
        }
        QString page_title = title;
        QString page_subtitle = subtitle;
        if (const auto y = page_head(r.surface, r.job, r.run, page_title, page_subtitle, head)) {
            r.surface.set_CurrentY(*y);
            list_head();
        }
        if (row < grid.rows()) {
            reset_print_font(r.surface);
            r.surface.print_text(line_of(row));
        }
    }
    reset_print_font(r.surface);
    r.surface.print_text(QString());
    r.surface.print_text(totals_label + " : " + count_text + "  " + sum_text);
    r.surface.print_text(average_label + " : " + average_text);
    end_of_print(r.surface, r.job, r.run);
    return true;
}

}  // namespace veldo
