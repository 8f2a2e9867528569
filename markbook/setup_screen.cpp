#include "markbook/setup_screen.h"

#include <QDir>
#include <QFile>

#include "markbook/mark_book_print.h"
#include "markbook/marks_table.h"
#include "markbook/setup_copy.h"
#include "markbook/setup_file.h"
#include "reports/print_service.h"
#include "reports/report_run.h"
#include "shell/inactivity.h"
#include "shell/screens.h"
#include "store/dbf_open.h"
#include "store/record_store.h"
#include "store/run_state.h"
#include "store/series.h"
#include "util/cp1252.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/safe_file.h"
#include "util/text_helpers.h"

namespace veldo {

namespace {

constexpr int kTotalColour = 0xC0FFFF;
constexpr int kPlainColour = 0xFFFFFF;

QString shifted_target(const QString& target, int by) { return plain_number_text(Val(target) + by); }

// The first value of a file as the delimited read takes it: a quoted text
// up to its closing quote (line ends included), else up to a comma or a
// line end.
QString first_value(const QByteArray& bytes) {
    const QString text = cp1252::decode(bytes);
    qsizetype from = 0;
    while (from < text.size() && (text[from] == ' ' || text[from] == '\t')) ++from;
    if (from < text.size() && text[from] == '"') {
        const qsizetype end = text.indexOf('"', from + 1);
        return text.mid(from + 1, end < 0 ? -1 : end - from - 1);
    }
    qsizetype end = from;
    while (end < text.size() && text[end] != ',' && text[end] != '\r' && text[end] != '\n') ++end;
    return text.mid(from, end - from).trimmed();
}

}  // namespace

SetupScreen::SetupScreen(ShellContext& ctx, PrintService& printer) : ctx_(ctx), printer_(printer) {
    colours_.fill(kPlainColour);
}

QString SetupScreen::caption() const { return ctx_.run.tr("PUNTEBOEK OPSTEL", "MARK BOOK SETUP"); }

bool SetupScreen::afrikaans() const { return ctx_.run.language_afrikaans; }

QStringList SetupScreen::button_captions() const {
    return ctx_.run.language_afrikaans
               ? QStringList{"OPDATEER", "STOOR PUNTEBOEK OPSTELLING", "VOORBEELD", "DRUK", "EXIT", "OK", "VOEG IN",
                             "VERWYDER", "KOPIEER"}
               : QStringList{"UPDATE", "SAVE MARK BOOK SETUP", "EXAMPLE", "PRINT", "EXIT", "OK", "INSERT", "REMOVE",
                             "COPY"};
}

QStringList SetupScreen::panel_headings() const {
    return ctx_.run.language_afrikaans
               ? QStringList{"NOMMER", "TAAK/PROJEK", "TOTAAL", "VERWERK NA", "TOT UIT", "SIKLUSNAAM"}
               : QStringList{"NUMBER", "TASK/PROJECT", "TOTAL", "RESULT", "OUT OF", "CYCLE NAME"};
}

QString SetupScreen::school() const { return ctx_.run.school_name; }

QString SetupScreen::data_folder() const { return QDir::toNativeSeparators(ctx_.run.data_folder); }

QStringList SetupScreen::copy_items() const { return copy_list_items(series_rows_); }

bool SetupScreen::load() {
    if (!form_header(ctx_, caption(), &header_)) {
        ctx_.screens.unload(screen::pboek_opstel);
        return false;
    }
    series_rows_ = series_rows(ctx_.store);
    return true;
}

bool SetupScreen::choose_subject(int row) {
    reset_activity(ctx_.run, ctx_.clock);
    if (row < 0 || row >= series_rows_.size()) return false;
    const QStringList& s = series_rows_[row];
    vak_ops_ = s.value(0).trimmed() + " " + s.value(1).trimmed();
    number_ = row + 1;
    key_ = setup_screen_key(ctx_.run.data_folder, series_key(s));
    const QString path = QDir(ctx_.run.data_folder).filePath(setup_file_name(key_));
    setup_ = QFile::exists(path) ? read_setup_file(path).value_or(MarkBookSetup()) : MarkBookSetup();
    for (int r = 1; r <= kSetupRows; ++r) colours_[std::size_t(r - 1)] = setup_.is_total_row(r) ? kTotalColour : kPlainColour;
    list_shown_ = false;
    current_ = 1;
    panel_ = {};
    return true;
}

void SetupScreen::paint_totals() {
    // Each row's target paints the name of the row it names; the colour of
    // a row that no longer is a total stays until the book is chosen again.
    for (const SetupRow& r : setup_.rows) {
        const int target = int(Val(r.target));
        if (target > 0 && target <= kSetupRows) colours_[std::size_t(target - 1)] = kTotalColour;
    }
}

void SetupScreen::select_row(int row) {
    reset_activity(ctx_.run, ctx_.clock);
    if (row < 1 || row > kSetupRows) return;
    current_ = row;
    paint_totals();
    const SetupRow& r = setup_.rows[std::size_t(row - 1)];
    panel_ = {QString::number(row), upper_afrikaans_text(r.name), r.total, r.target, r.out_of, upper_afrikaans_text(r.cycle)};
}

void SetupScreen::type_into(int box, const QString& text) {
    if (box < 0 || box > 5) return;
    QString typed = text;
    if (box >= 1)
        for (QChar& c : typed)
            if (c >= 'a' && c <= 'z') c = QChar(c.unicode() - 'a' + 'A');
    panel_[std::size_t(box)] = typed;
}

bool SetupScreen::leave_box(int box) {
    if (box < 2 || box > 4) return true;
    const QString& text = panel_[std::size_t(box)];
    if (text.trimmed().isEmpty() || IsNumeric(text)) return true;
    ctx_.dialogs.beep();
    return false;
}

bool SetupScreen::pboek_data_ok() {
    reset_activity(ctx_.run, ctx_.clock);
    if (panel_[1].trimmed().isEmpty()) {
        ctx_.dialogs.beep();
        return false;
    }
    setup_.rows[std::size_t(current_ - 1)] = {panel_[1], panel_[2], panel_[3], panel_[4], panel_[5]};
    return true;
}

void SetupScreen::insert_rows(MarkBookSetup& setup, int line) {
    if (line < 1) return;
    for (int row = kSetupRows; row >= line; --row) {
        SetupRow& r = setup.rows[std::size_t(row - 1)];
        if (r.is_used() && Val(r.target) > line) r.target = shifted_target(r.target, 1);
        // Row 40 has nowhere to go: it is lost.
        if (row < kSetupRows) setup.rows[std::size_t(row)] = r;
    }
    if (line <= kSetupRows) setup.rows[std::size_t(line - 1)] = SetupRow();
}

void SetupScreen::remove_row(MarkBookSetup& setup, int row) {
    if (row < 1 || row > kSetupRows) return;
    for (int r = row; r < kSetupRows; ++r) setup.rows[std::size_t(r - 1)] = setup.rows[std::size_t(r)];
    setup.rows[kSetupRows - 1] = SetupRow();
    // A row that named the removed one keeps its number: it now names the next.
    for (SetupRow& r : setup.rows)
        if (Val(r.target) > row) r.target = shifted_target(r.target, -1);
}

bool SetupScreen::move_marks(int row, bool inserting) {
    RunState& run = ctx_.run;
    const QString path = find_ignoring_case(run.data_folder, marks_table_name(number_));
    if (path.isEmpty()) return true;  // no marks yet: the save makes the table
    DbfError error;
    auto table = open_table_to_write(run, path, &error);
    auto fail = [&](const DbfError& e) {
        ctx_.dialogs.message(dbf_error_message(e, run.language_afrikaans), MsgIcon::Critical);
        return false;
    };
    if (!table) return fail(error);
    if (!table->begin_batch()) return fail(table->last_error());
    const int last = std::min(table->field_count() - 1, kSetupRows + 1);
    const int first = row + 1;  // the field of the row
    for (table->MoveFirst(); !table->Eof(); table->MoveNext()) {
        table->Edit();
        if (inserting) {
            for (int f = last; f > first; --f) table->set_value(f, table->value(f - 1));
            if (first <= last) table->set_value(first, QString());
        } else {
            for (int f = first; f < last; ++f) table->set_value(f, table->value(f + 1));
            if (first <= last) table->set_value(last, QString());
        }
        if (!table->Update(&error)) return fail(error);
    }
    if (!table->commit_batch(&error)) return fail(error);
    return true;
}

bool SetupScreen::pboek_data_ins() {
    reset_activity(ctx_.run, ctx_.clock);
    if (list_shown_) return false;
    const QString answer =
        ctx_.dialogs.input(ctx_.run.tr("VOEG IN VOOR LYN ...", "INSERT BEFORE LINE ..."), ctx_.run.tr("INVOEG", "INSERT"));
    const int line = int(Val(answer));
    if (line <= 0) return false;
    if (!move_marks(line, true)) return false;
    insert_rows(setup_, line);
    return pboek_opstel_stoor();
}

bool SetupScreen::pboek_data_del() {
    reset_activity(ctx_.run, ctx_.clock);
    if (list_shown_) return false;
    const QString name = setup_.rows[std::size_t(current_ - 1)].name;
    const QString question = ctx_.run.tr("WIL U DEFNITIEF \r\n\"" + name + "\" UITVEE ?",
                                         "DO YOU WISH TO DELETE \r\n\"" + name + "\" ?");
    if (ctx_.dialogs.message(question, MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes) return false;
    if (!move_marks(current_, false)) return false;
    remove_row(setup_, current_);
    return pboek_opstel_stoor();
}

bool SetupScreen::pboek_opstel_stoor() {
    reset_activity(ctx_.run, ctx_.clock);
    if (number_ <= 0) return false;
    QString error;
    if (!write_setup_file(QDir(ctx_.run.data_folder).filePath(setup_file_name(key_)), setup_, &error)) {
        ctx_.dialogs.message(error, MsgIcon::Critical);
        return false;
    }
    return update_marks_table(ctx_.store, number_);
}

bool SetupScreen::pboek_opstel_save() {
    const bool saved = pboek_opstel_stoor();
    list_shown_ = true;
    return saved;
}

void SetupScreen::pboek_opstel_help() {
    reset_activity(ctx_.run, ctx_.clock);
    apply_example_book(setup_, ctx_.run.language_afrikaans);
}

bool SetupScreen::pboek_opstel_print() {
    reset_activity(ctx_.run, ctx_.clock);
    const MarkBookSetup setup = setup_;
    return printer_.print([&](ReportRun& r) { return print_setup(r, setup); });
}

QString SetupScreen::explanations_path() const {
    const QString name = ctx_.run.language_afrikaans ? "kolom_info.afr" : "kolom_info.eng";
    const QString found = find_ignoring_case(ctx_.run.start_folder, name);
    return found.isEmpty() ? QDir(ctx_.run.start_folder).filePath(name) : found;
}

void SetupScreen::show_explanations() {
    QFile file(explanations_path());
    explanations_ = file.open(QIODevice::ReadOnly) ? first_value(file.readAll()) : QString();
    explanations_shown_ = true;
}

bool SetupScreen::kb_druk() {
    const QString text = explanations_;
    return printer_.print([&](ReportRun& r) {
        QString title = setup_print_title(r.run.language_afrikaans);
        if (!ask_output_target(r.surface, r.job, r.run, title, r.ask)) return false;
        r.job.new_print_job = true;
        print_setup(r.surface, r.job, r.run, kPortrait);
        QString subtitle;
        for (const QString& line : QString(text).replace("\r\n", "\n").split('\n')) {
            QString t = title;
            page_head(r.surface, r.job, r.run, t, subtitle);
            r.surface.set_CurrentX(2);
            r.surface.print_text(line);
        }
        end_of_print(r.surface, r.job, r.run);
        return true;
    });
}

void SetupScreen::kb_ok() {
    if (ctx_.run.school_name == "VELDO-HOUSE") {
        QString error;
        if (!write_file_atomic(explanations_path(), cp1252::encode("\"" + explanations_ + "\"\r\n"), &error))
            ctx_.dialogs.message(error, MsgIcon::Critical);
    }
    explanations_shown_ = false;
}

int SetupScreen::copy_ok(int source, const QList<int>& destinations) {
    reset_activity(ctx_.run, ctx_.clock);
    const int copied = copy_setups(ctx_.run, series_rows_, source, without_source(destinations, source));
    copy_shown_ = false;
    return copied;
}

void SetupScreen::pboek_opstel_exit() {
    ctx_.screens.unload(screen::pboek_opstel);
    ctx_.screens.show(screen::punte_menu2);
}

}  // namespace veldo
