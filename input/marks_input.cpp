#include "input/marks_input.h"

#include <QDir>
#include <QHash>

#include <algorithm>

#include "reports/print_service.h"
#include "reports/report_run.h"
#include "shell/change_folder.h"
#include "shell/inactivity.h"
#include "shell/screens.h"
#include "store/dbf_table.h"
#include "store/record_store.h"
#include "store/series.h"
#include "util/file_lookup.h"
#include "util/safe_file.h"
#include "util/text_grid.h"
#include "util/text_helpers.h"

namespace veldo {

namespace {

// Marks that stand for no number: absent, or nothing typed.
bool no_mark(const QString& trimmed) { return trimmed.isEmpty() || trimmed == "A" || trimmed == "a"; }

QString stored_text(const DbfTable& t, int field) { return toets_null_text(t.value(field)); }

// The largest input total whose marks still fit the six places of the mark
// field with their decimal ("9999.0").
constexpr double kLargestInputTotal = 9999;

}  // namespace

QString marks_list_title(const QStringList& row) {
    QString class_part = row.value(3).trimmed();
    if (class_part.isEmpty()) class_part = row.value(5).trimmed();
    return row.value(0).trimmed() + " " + QString(row.value(1)).replace(' ', '_') + " " + class_part + " " +
           row.value(4).trimmed();
}

MarksListSum fill_marks_print_grid(TextGrid& grid, DbfTable& marks, bool afrikaans, bool sort_by_column) {
    grid = TextGrid(1, 6);
    grid.set_fixed_cols(0);
    grid.set_font_size(7);
    grid.set_format_string(afrikaans ? "<NR|^  T.NR|<LEERDER|>  PUNT|PS/VO|>  TOTAAL|"
                                     : "<NO|^  A.NO|<LEARNER|>  MARK|EK/SR|>   TOTAL|");
    grid.set_col_width(2, 4000);
    grid.set_col_width(6, 0);  // the closing bar names no column
    grid.set_rows(marks.RecordCount() + 1);
    grid.set_fixed_rows(1);
    MarksListSum sum;
    int row = 1;
    for (marks.MoveFirst(); !marks.Eof() && row < grid.rows(); marks.MoveNext(), ++row) {
        const QString mark = stored_text(marks, kClassListMark).trimmed();
        if (!mark.isEmpty() && mark.toUpper() != "A") {
            sum.sum += Val(mark);
            ++sum.count;
        }
        grid.set_text(row, 0, QString::number(row));
        grid.set_text(row, 1, stored_text(marks, kClassListNumber));
        grid.set_text(row, 2, stored_text(marks, kClassListName));
        grid.set_text(row, 3, right_justified(mark, 5));
        grid.set_text(row, 4, right_justified(stored_text(marks, kClassListKey).trimmed(), 5));
        grid.set_text(row, 5, right_justified(format_mask(sum.sum, "######.0"), 7));
    }
    grid.set_rows(row);
    if (sort_by_column) grid.sort(2, GridSort::NumericDescending);
    return sum;
}

bool print_cycle_marks_list(ReportRun& r, DbfTable& marks, const QString& title, double input_total) {
    const bool af = r.run.language_afrikaans;
    TextGrid grid;
    const MarksListSum sum = fill_marks_print_grid(grid, marks, af);
    r.job.export_stem = (af ? "PUNTE " : "MARKS ") + title;
    if (!ask_output_target(r.surface, r.job, r.run, title, r.ask)) return false;
    r.job.new_print_job = true;
    const double average = sum.count > 0 ? sum.sum / sum.count : 0;
    const QString label = af ? "GEMIDDELD := " : "AVERAGE := ";
    const QString average_text = format_mask(average, "###.0");
    const QString percent_text =
        (input_total != 0 ? format_mask(average / (input_total / 100), "###.0") : QString(".0")) + "%";
    if (r.job.output_to_excel) {
        // A workbook gets no lines beside the grid: the averages go in as
        // its last rows.
        grid.set_rows(grid.rows() + 3);
        grid.set_text(grid.rows() - 2, 2, label.trimmed());
        grid.set_text(grid.rows() - 2, 3, average_text);
        grid.set_text(grid.rows() - 1, 3, percent_text);
    }
    print_grid_pages(r, grid, title, kPortrait, GridReportOptions{}, false, PageFoot{10, false});
    if (!r.job.output_to_excel) {
        r.surface.set_CurrentY(r.surface.CurrentY() + 2);
        r.surface.set_CurrentX(5);
        r.surface.print_text(label, true);
        r.surface.set_CurrentX(20);
        r.surface.print_text(average_text);
        r.surface.set_CurrentX(20);
        r.surface.print_text(percent_text);
    }
    end_of_print(r.surface, r.job, r.run);
    return true;
}

MarksInput::MarksInput(ShellContext& ctx, PrintService& printer) : ctx_(ctx), printer_(printer) {}

MarksInput::~MarksInput() = default;

QString MarksInput::caption() const { return ctx_.run.tr("PUNTE INLEES", "MARKS INPUT"); }

QStringList MarksInput::button_captions() const {
    if (ctx_.run.language_afrikaans) return {"SAKREKENAAR", "UNDO", "SKRYF", "DRUK", "'PASTE'", "EXIT"};
    return {"CALCULATOR", "UNDO", "WRITE", "PRINT", "'PASTE'", "EXIT"};
}

QStringList MarksInput::tool_tips() const {
    if (ctx_.run.language_afrikaans)
        return {" Gebruik SAKREKENAAR ", " 'UNDO' = Herstel punte soos voor veranderings ",
                " SKRYF = Stoor punte in punteleêrs ", " DRUK = Druk 'n Puntelys ", QString(), "EXIT"};
    return {" Use CALCULATOR ", " UNDO = Reset marks to before changes ", " WRITE = Store marks to file ",
            " PRINT = Print a Mark list ", QString(), "EXIT"};
}

QString MarksInput::school_name() const { return ctx_.run.school_name; }

QString MarksInput::data_folder() const { return QDir::toNativeSeparators(ctx_.run.data_folder); }

QStringList MarksInput::figure_captions() const {
    return ctx_.run.language_afrikaans ? QStringList{"TOTAAL", "GEMIDDELD %"} : QStringList{"TOTAL", "AVERAGE %"};
}

QString MarksInput::average_tool_tip() const {
    return ctx_.run.tr(" Doen VERSKALINGS (punte aanpassing volgens gemiddeld verskaf) ... ",
                       " Do SCALING (marks adjusted according to given average) ... ");
}

QString MarksInput::screen_name() const { return screen::punte_inlees; }

void MarksInput::remember_user_info() { remember_data_folder(ctx_.run, ctx_.run.program_folder, false); }

bool MarksInput::load() {
    if (!form_header(ctx_, caption(), &header_)) {
        ctx_.screens.unload(screen_name());
        return false;
    }
    list_series();
    remember_user_info();
    return true;
}

void MarksInput::list_series() {
    vak_ops_ = caption();
    series_ = series_rows(ctx_.store);
}

bool MarksInput::table_failed() {
    ctx_.dialogs.message(dbf_error_message(table_->last_error(), ctx_.run.language_afrikaans), MsgIcon::Critical);
    return false;
}

bool MarksInput::ask_input_total() {
    RunState& run = ctx_.run;
    const QString prompt = run.tr("INLEESTOTAAL\r\n\r\n[ VAKTOTAAL = ", "INPUT TOTAL\r\n\r\n[ SUBJECT TOTAL = ") +
                           number_text(subject_total_) + " ]\r\n";
    const QString reply = ctx_.dialogs.input(prompt, QString(), plain_number_text(subject_total_));
    if (reply.isEmpty()) return true;
    const double wanted = Val(reply);
    // A total of 0 would divide every mark by zero on the save, and a
    // larger one than the field holds would cut its marks.
    if (!(wanted > 0 && wanted <= kLargestInputTotal) || subject_total_ <= 0) {
        ctx_.dialogs.beep();
        ctx_.dialogs.message(run.tr("Die INLEESTOTAAL moet groter as 0 en hoogstens 9999 wees: punte word uit die "
                                    "VAKTOTAAL van" + number_text(subject_total_) + " ingelees.",
                                    "The INPUT TOTAL must be above 0 and at most 9999: marks are input out of the "
                                    "SUBJECT TOTAL of" + number_text(subject_total_) + "."),
                             MsgIcon::Exclamation);
        return true;
    }
    input_total_ = wanted;
    return true;
}

bool MarksInput::layout_fits(const DbfTable& table, DbfError* error) const {
    if (table.field_count() >= 4 && table.field(kClassListMark).type == DbfType::Character) return true;
    *error = DbfError{DbfError::NoSuchField, table.path(), table.field_count() < 3 ? "EF_PUNT" : "EF_P_S"};
    return false;
}

bool MarksInput::open_subject(int row) {
    activity();
    if (row < 0 || row >= series_.size()) return false;
    RunState& run = ctx_.run;
    const QStringList& r = series_[row];
    vak_ops_ = r.value(0).trimmed() + " " + r.value(1).trimmed();
    subject_total_ = Val(r.value(2));
    input_total_ = subject_total_;
    subject_row_ = row;
    marks_path_ = find_ignoring_case(run.data_folder, table_stem() + QString::number(row + 1) + ".DBF");
    if (marks_path_.isEmpty()) {
        // Nothing of the last series stays behind for a print from the list.
        table_.reset();
        ctx_.dialogs.beep();
        return false;
    }
    ask_input_total();
    ops_totale_ = number_text(subject_total_) + " -- " + number_text(input_total_);
    return input_total_chosen();
}

bool MarksInput::open_chosen() {
    RunState& run = ctx_.run;
    // The table must open and have the fields the grid edits before its copy
    // replaces the last good one.
    DbfError error;
    auto table = DbfTable::open(marks_path_, &error);
    if (table && !layout_fits(*table, &error)) table.reset();
    if (!table) {
        ctx_.dialogs.message(dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
        return false;
    }
    const QString backup =
        path_ignoring_case(run.data_folder, table_stem() + QString::number(subject_row_ + 1) + ".BAK");
    QString why;
    if (!copy_file_atomic(marks_path_, backup, &why)) {
        ctx_.dialogs.message(run.tr("Kan nie " + QDir::toNativeSeparators(backup) + " skryf nie: " + why,
                                    "Can't write " + QDir::toNativeSeparators(backup) + ": " + why),
                             MsgIcon::Critical);
        return false;
    }
    table_ = std::move(table);
    backup_path_ = backup;
    open_ = false;
    if (table_->RecordCount() == 0) return false;

    sum_of_marks_ = 0;
    mark_count_ = 0;
    average_percent_ = Currency();
    total_text_.clear();
    average_text_.clear();
    before_sort();
    if (!sort_by_name() || !load_marks()) return false;
    open_ = true;
    save_enabled_ = true;
    return true;
}

void MarksInput::before_sort() {
    RunState& run = ctx_.run;
    if (input_total_ != subject_total_)
        ctx_.dialogs.message(run.tr("Besig om punte van" + number_text(subject_total_) + " na" +
                                        number_text(input_total_) + " te verwerk!",
                                    "Busy converting marks from" + number_text(subject_total_) + " to" +
                                        number_text(input_total_) + "!"),
                             MsgIcon::Exclamation);
    effort_keys_wanted_ = ctx_.dialogs.message(run.tr("GAAN U PRESTASIESLEUTELS OOK INLEES ?",
                                                      "ARE YOU GOING TO INPUT EFFORT KEYS ALSO ?"),
                                               MsgIcon::Question, MsgButtons::YesNo) == MsgAnswer::Yes;
}

void MarksInput::set_progress(const std::function<void(int, int)>& progress) { progress_ = progress; }

// The table's physical order becomes the order of the names: the records
// sorted as the grid sorts their name cells, each written back in its new
// place. One read, one write.
bool MarksInput::sort_by_name() {
    DbfTable& t = *table_;
    if (!t.begin_batch()) return table_failed();
    std::vector<QByteArray> records;
    TextGrid names(0, 2);
    names.set_fixed_rows(0);
    names.set_fixed_cols(0);
    for (t.MoveFirst(); !t.Eof(); t.MoveNext()) {
        names.add_item(QString::number(records.size()) + "\t" + stored_text(t, kClassListName));
        records.emplace_back(t.record_bytes().toByteArray());
    }
    names.sort(1, GridSort::GenericAscending);
    const int count = int(records.size());
    if (progress_) progress_(0, count);
    t.MoveFirst();
    for (int i = 0; i < count && !t.Eof(); ++i, t.MoveNext()) {
        if (!t.Edit() || !t.set_record_bytes(records[std::size_t(names.text(i, 0).toInt())]) || !t.Update()) {
            t.CancelUpdate();
            t.commit_batch();
            return table_failed();
        }
        if (progress_) progress_(i + 1, count);
    }
    DbfError error;
    if (!t.commit_batch(&error)) return table_failed();
    return true;
}

bool MarksInput::load_marks(bool count_marks) {
    DbfTable& t = *table_;
    const bool convert = input_total_ != subject_total_;
    if (convert && !t.begin_batch()) return table_failed();
    for (t.MoveFirst(); !t.Eof(); t.MoveNext()) {
        if (no_mark(stored_text(t, kClassListMark).trimmed())) continue;
        if (convert) {
            const double mark = Val(stored_text(t, kClassListMark)) / subject_total_ * input_total_;
            if (!t.Edit() || !t.set_value(kClassListMark, format_mask(mark, "###.0")) || !t.Update()) {
                t.CancelUpdate();
                t.commit_batch();
                return table_failed();
            }
        }
        if (!count_marks) continue;
        sum_of_marks_ = float(double(sum_of_marks_) + Val(stored_text(t, kClassListMark)));
        mark_count_ += 1;
    }
    if (convert && !t.commit_batch()) return table_failed();
    if (count_marks) show_totals();
    t.MoveFirst();
    return true;
}

void MarksInput::show_totals() {
    if (input_total_ == 0 || !(sum_of_marks_ > 0)) return;
    total_text_ = format_mask(sum_of_marks_, "####0.0");
    if (mark_count_ > 0) {
        // The sum as its text, as single precision keeps it.
        const double sum = Val(number_text(sum_of_marks_, 7));
        average_percent_ = Currency::from_double(sum / double(mark_count_));
        average_percent_ = Currency::from_double(average_percent_.to_double() / input_total_ * 100);
        average_text_ = format_mask(average_percent_.to_double(), "##0.0");
    }
}

int MarksInput::learner_count() const { return open_ && table_ ? table_->RecordCount() : 0; }

QString MarksInput::heading(int column) const {
    const bool af = ctx_.run.language_afrikaans;
    switch (column) {
        case 0: return af ? "T-NR" : "A-NO";
        case 1: return af ? "LEERDER" : "LEARNER";
        case 2: return (af ? "PUNT(" : "MARK(") + number_text(input_total_) + ")";
        case 3: return af ? "PS/VO" : "EK/SR";
        default: return {};
    }
}

bool MarksInput::go_to(int row) {
    if (!table_ || row < 0 || row >= table_->RecordCount()) return false;
    if (table_->position() != row) {
        table_->MoveFirst();
        table_->Move(row);
    }
    return !table_->Eof();
}

QString MarksInput::cell(int row, int column) {
    if (!open_ || column < 0 || column >= column_count() || !go_to(row)) return {};
    return stored_text(*table_, column);
}

int MarksInput::column_entered(int column, int) const { return column < 2 ? 2 : std::min(column, 3); }

std::pair<int, int> MarksInput::next_cell(int row, int column) const {
    if (effort_keys_wanted_ && column != 3) return {row, 3};
    return {row + 1 < learner_count() ? row + 1 : row, 2};
}

void MarksInput::activity() { reset_activity(ctx_.run, ctx_.clock); }

bool MarksInput::cell_changed(int row, int column, const QString& typed) {
    activity();
    if (!open_ || !column_takes_marks(column) || !go_to(row)) return false;
    DbfTable& t = *table_;
    const QString now = typed.trimmed();
    QString text = now;
    if (column == kClassListMark) {
        const QString old = stored_text(t, kClassListMark);
        const double old_mark = Val(old);
        if (old_mark >= 0 && old_mark <= input_total_) sum_of_marks_ = float(double(sum_of_marks_) - old_mark);
        show_totals();
        if (now != old.trimmed()) marks_changed_ = true;
        if (!no_mark(now)) {
            const double mark = Val(now);
            if (!(mark >= 0 && mark <= input_total_)) {
                ctx_.dialogs.beep();
                ctx_.dialogs.message(ctx_.run.tr("Punte kan slegs ' ', 'A', 'a' of 0-" + number_text(input_total_) +
                                                     " wees",
                                                 "Marks can only be ' ', 'A', 'a' or 0-" + number_text(input_total_)),
                                     MsgIcon::None, MsgButtons::Ok);
                return false;
            }
            text = format_mask(mark, "##0.0");
        }
    }
    if (!t.Edit() || !t.set_value(column, text) || !t.Update()) {
        t.CancelUpdate();
        return table_failed();
    }
    if (column == kClassListMark && !no_mark(now)) {
        sum_of_marks_ = float(double(sum_of_marks_) + Val(text));
        if (counts_keyed_marks()) mark_count_ += 1;
        show_totals();
    }
    return true;
}

void MarksInput::marks_calculator() {
    activity();
    ctx_.screens.show_modal(screen::MathCalc);
}

bool MarksInput::marks_save() {
    activity();
    if (!open_ || !table_) return false;
    RunState& run = ctx_.run;
    DbfTable& t = *table_;
    if (input_total_ != subject_total_) {
        ctx_.dialogs.message(run.tr("Besig om punte van" + number_text(input_total_) + " na" +
                                        number_text(subject_total_) + " te verwerk!",
                                    "Busy converting marks from" + number_text(input_total_) + " to" +
                                        number_text(subject_total_) + "!"));
        if (!t.begin_batch()) return table_failed();
        for (t.MoveFirst(); !t.Eof(); t.MoveNext()) {
            const QVariant stored = t.value(kClassListMark);
            const QString mark = toets_null_text(stored);
            if (!stored.isValid() || mark == "A" || mark == "a" || mark == " ") continue;
            if (!t.Edit() ||
                !t.set_value(kClassListMark, format_mask(Val(mark) / input_total_ * subject_total_, "##0.0")) ||
                !t.Update()) {
                t.CancelUpdate();
                t.commit_batch();
                return table_failed();
            }
        }
        if (!t.commit_batch()) return table_failed();
        t.MoveFirst();
    }
    save_enabled_ = false;
    // The series now stands in its own total: whatever follows, the list
    // comes back.
    open_ = false;

    return copy_into_partner();
}

bool MarksInput::copy_into_partner() {
    // Each mark into obe_p<K>.dbf by admission number; a learner who isn't
    // there yet is added.
    return copy_marks_into(
        "OBE_P", "eo_t_nr", "eo_punt", [](const QVariant& number) { return QVariant(Val(plain_text(number))); },
        [](const QVariant& stored) {
            const QString mark = toets_null_text(stored);
            return no_mark(mark.trimmed()) ? stored : QVariant(format_one_decimal(Val(mark)));
        });
}

bool MarksInput::copy_marks_into(const QString& stem, const QString& number_name, const QString& mark_name,
                                 const std::function<QVariant(const QVariant&)>& number_value,
                                 const std::function<QVariant(const QVariant&)>& mark_value) {
    RunState& run = ctx_.run;
    DbfTable& t = *table_;
    DbfError error;
    auto other =
        DbfTable::open(path_ignoring_case(run.data_folder, stem + QString::number(subject_row_ + 1) + ".DBF"), &error);
    const int number_field = other ? other->field_index(number_name) : -1;
    const int mark_field = other ? other->field_index(mark_name) : -1;
    if (other && (number_field < 0 || mark_field < 0)) {
        error = DbfError{DbfError::NoSuchField, other->path(), (number_field < 0 ? number_name : mark_name).toUpper()};
        other.reset();
    }
    if (!other || !other->begin_batch()) {
        if (other) error = other->last_error();
        ctx_.dialogs.message(dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
        return false;
    }
    // Only the first of equal numbers counts, as a search from the top finds it.
    QHash<double, int> positions;
    int position = 0;
    for (other->MoveFirst(); !other->Eof(); other->MoveNext(), ++position) {
        const double n = Val(plain_text(other->value(number_field)));
        if (!positions.contains(n)) positions.insert(n, position);
    }
    for (t.MoveFirst(); !t.Eof(); t.MoveNext()) {
        const QVariant number = t.value(kClassListNumber);
        const auto at = positions.constFind(Val(plain_text(number)));
        bool ok;
        if (at != positions.constEnd()) {
            other->MoveFirst();
            other->Move(at.value());
            ok = other->Edit();
        } else {
            ok = other->AddNew() && other->set_value(number_field, number_value(number));
        }
        ok = ok && other->set_value(mark_field, mark_value(t.value(kClassListMark)));
        if (!ok || !other->Update()) {
            error = other->last_error();
            other->CancelUpdate();
            other->commit_batch();
            ctx_.dialogs.message(dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
            return false;
        }
    }
    if (!other->commit_batch(&error)) {
        ctx_.dialogs.message(dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
        return false;
    }
    return true;
}

void MarksInput::marks_undo() {
    activity();
    if (!open_ || !table_) return;
    if (ctx_.dialogs.message(undo_warning(), MsgIcon::Exclamation, MsgButtons::OkCancel) == MsgAnswer::Cancel) return;
    // The backup holds the marks out of the series' own total: they go to
    // the input total again, or the save would convert them a second time.
    if (restore_backup()) load_marks(false);
}

QString MarksInput::undo_warning() const {
    return ctx_.run.tr("'UNDO' sal punte na vorige waardes herstel!", "'UNDO' reset marks to previous values!");
}

bool MarksInput::restore_backup() {
    if (!table_) return false;
    RunState& run = ctx_.run;
    table_.reset();
    QString why;
    const bool copied = copy_file_atomic(backup_path_, marks_path_, &why);
    DbfError error;
    table_ = DbfTable::open(marks_path_, &error);
    if (!copied)
        ctx_.dialogs.message(run.tr("Kan nie " + QDir::toNativeSeparators(marks_path_) + " skryf nie: " + why,
                                    "Can't write " + QDir::toNativeSeparators(marks_path_) + ": " + why),
                             MsgIcon::Critical);
    if (!table_) {
        open_ = false;
        ctx_.dialogs.message(dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
    }
    return copied && table_;
}

bool MarksInput::marks_print() {
    activity();
    if (!table_ || subject_row_ < 0) return false;
    const QString title = series_title();
    const bool printed = printer_.print([&](ReportRun& r) {
        const bool chosen = print_cycle_marks_list(r, *table_, title, input_total_);
        if (chosen) list_printed_ = true;
        return chosen;
    });
    go_to(0);
    return printed;
}

QString MarksInput::series_title() const { return marks_list_title(series_.value(subject_row_)); }

bool MarksInput::heading_click(int column) {
    activity();
    if (!open_ || column != kClassListMark) return false;
    return marks_print();
}

void MarksInput::scale_marks() {
    activity();
    if (!open_ || !table_ || input_total_ <= 0) return;
    RunState& run = ctx_.run;
    const QString prompt = run.tr("Huidige gemiddeld ", "Current average ") +
                           number_text(average_percent_.to_double()) + "\r\n\r\n" +
                           run.tr("Nuwe gemiddeld ...", "New average ...");
    const double wanted = Val(ctx_.dialogs.input(prompt, QString(), average_percent_.text()).trimmed());
    if (wanted == 0) return;
    DbfTable& t = *table_;
    if (!t.begin_batch()) {
        table_failed();
        return;
    }
    sum_of_marks_ = 0;
    mark_count_ = 0;
    const double old = average_percent_.to_double();
    for (t.MoveFirst(); !t.Eof(); t.MoveNext()) {
        const QVariant stored = t.value(kClassListMark);
        if (!stored.isValid() || no_mark(toets_null_text(stored).trimmed())) continue;
        const double percent = Val(toets_null_text(stored)) / input_total_ * 100;
        const double x = std::min(std::max(0.0, percent - old + wanted), 100.0);
        const double mark = x * input_total_ / 100;
        sum_of_marks_ = float(double(sum_of_marks_) + mark);
        mark_count_ += 1;
        if (!t.Edit() || !t.set_value(kClassListMark, format_mask(mark, "##0.0")) || !t.Update()) {
            t.CancelUpdate();
            t.commit_batch();
            table_failed();
            return;
        }
    }
    if (!t.commit_batch()) table_failed();
    t.MoveFirst();
    show_totals();
}

QStringList MarksInput::paste_warning() const {
    if (ctx_.run.language_afrikaans)
        return {"Hierdie funksie sal blindweg enige inligting wat in die Windows 'clipboard' is",
                "as punte in die puntelêer 'paste'. Dit is UITERS belangrik dat",
                "u seker maak dat u nie hierdie funksie doen as die data in die 'clipboard' nie",
                "in PRESIES dieselfde volgorde as die leerders op die skerm is.",
                "Hierdie funksie het geen validasie nie en sal alle punte op die",
                "matriks OORSKRYF (oorweeg LEERDERVOLGORDE en VAKTOTAAL)",
                "WIL U DEFNITIEF VOORTGAAN ?"};
    return {"This function will indiscriminately paste any information from",
            "the Windows clipboard as marks in the marks file. It is of extreme",
            "importance not to execute this function if the data in the clipboard",
            "is not in EXACTLY the same sequence as the learners on the screen.",
            "This function contains no validation and will overwrite any marks on",
            "the marks file (consider LEARNER SEQUENCE and SUBJECT TOTAL)",
            "DO YOU REALY WANT TO CONTINUE ?"};
}

void MarksInput::paste_into_flex() {
    activity();
    if (!open_ || !table_) return;
    if (ctx_.dialogs.message(paste_warning().join("\r\n"), MsgIcon::Critical, MsgButtons::YesNo) != MsgAnswer::Yes)
        return;
    paste_confirmed();
}

void MarksInput::paste_column(int field, bool as_mark) {
    DbfTable& t = *table_;
    const int count = t.RecordCount();
    TextGrid paste_grid(count, 1);
    paste_grid.set_fixed_rows(0);
    paste_grid.set_fixed_cols(0);
    paste_grid.set_clip(0, 0, count - 1, 0, ctx_.dialogs.clipboard_text());
    if (!t.begin_batch()) {
        table_failed();
        return;
    }
    int row = 0;
    for (t.MoveFirst(); !t.Eof(); t.MoveNext(), ++row) {
        const QString text = paste_grid.text(row, 0);
        if (!t.Edit() || !t.set_value(field, as_mark ? format_one_decimal(Val(text)) : text) || !t.Update()) {
            t.CancelUpdate();
            t.commit_batch();
            table_failed();
            return;
        }
    }
    if (!t.commit_batch()) table_failed();
    t.MoveFirst();
}

void MarksInput::marks_exit() {
    activity();
    if (open_) {
        marks_save();
        if (!list_printed_ &&
            ctx_.dialogs.message(ctx_.run.tr("WIL U 'N PUNTELYS DRUK ?", "DO YOU WANT TO PRINT A MARK LIST ?"),
                                 MsgIcon::Question, MsgButtons::YesNo) == MsgAnswer::Yes)
            marks_print();
        open_ = false;
        return;
    }
    table_.reset();
    ctx_.screens.unload(screen_name());
    ctx_.screens.show(screen::punte_menu1);
}

}  // namespace veldo
