#include "markbook/mark_book_input.h"

#include "markbook/column_actions.h"
#include "markbook/mark_book_print.h"
#include "markbook/move_learners.h"
#include "markbook/totals_engine.h"
#include "markbook/typed_mark.h"
#include "reports/print_service.h"
#include "shell/inactivity.h"
#include "shell/screens.h"
#include "store/dbf_table.h"
#include "store/record_store.h"
#include "store/series.h"
#include "util/file_lookup.h"
#include "util/text_helpers.h"

namespace veldo {

MarkBookInput::MarkBookInput(ShellContext& ctx, PrintService& printer) : ctx_(ctx), printer_(printer) {}

MarkBookInput::~MarkBookInput() = default;

QStringList MarkBookInput::captions() const {
    if (ctx_.run.language_afrikaans)
        return {"PUNTEBOEK INLEES", "SAKREKENAAR", "UNDO",  "HERBEREKEN TOTALE", "DRUK", "'COPY'", "'PASTE'",
                "'PRINT SCREEN'",   "EXIT"};
    return {"MARK BOOK INPUT", "CALCULATOR", "UNDO", "RECALCULATE TOTALS", "PRINT", "'COPY'", "'PASTE'",
            "'PRINT SCREEN'",  "EXIT"};
}

QStringList MarkBookInput::column_choices() const {
    return ctx_.run.language_afrikaans ? QStringList{"DOEN VERSKALING", "DRUK MERIETELYS"}
                                       : QStringList{"MARK SCALING", "PRINT MERIT LIST"};
}

QStringList MarkBookInput::column_choice_help() const {
    return ctx_.run.language_afrikaans
               ? QStringList{"Doen punt-aanpassing volgens nuwe gemiddeld ...", "Druk merietelys vir gekose kolom ..."}
               : QStringList{"Do mark adjustment according to new average ...", "Print merit list for chosen column ..."};
}

bool MarkBookInput::refuse(const QString& text) {
    ctx_.dialogs.message(text, MsgIcon::Exclamation);
    ctx_.screens.unload(screen::pboek_inlees);
    ctx_.screens.show(screen::punte_menu2);
    return false;
}

bool MarkBookInput::load() {
    RunState& run = ctx_.run;
    if (!folder_exists(run.data_folder))
        return refuse(run.tr("1 Sien 'PUNTEBOEK - INVOER' om rekords te skep", "1 See 'MARK BOOK - IMPORT' to create records"));
    if (!has_marks_files(run.data_folder))
        return refuse(run.tr("2 Sien 'PUNTEBOEK - INVOER' om rekords te skep", "2 See 'MARK BOOK IMPORT' to ceate records"));
    if (!form_header(ctx_, captions().first(), &header_)) {
        ctx_.screens.unload(screen::pboek_inlees);
        return false;
    }
    series_ = series_rows(ctx_.store);
    return true;
}

bool MarkBookInput::vak_grid_click(int row) {
    if (row < 0 || row >= series_.size()) return false;
    const QStringList& r = series_[row];
    vak_info_ = r.value(0).trimmed() + " " + r.value(1).trimmed();
    book_ = open_mark_book(ctx_.store, r, row + 1);
    if (!book_) return false;
    series_row_ = row;
    chosen_column_ = -1;
    show_averages();
    return true;
}

void MarkBookInput::show_averages() {
    if (book_) averages_ = class_averages(*book_->table, book_->lists);
}

int MarkBookInput::learner_count() const { return book_ ? book_->table->RecordCount() : 0; }

int MarkBookInput::column_count() const { return book_ ? std::min(book_->table->field_count(), 42) : 0; }

QString MarkBookInput::heading(int column) const {
    if (!book_) return {};
    if (column == 0) return ctx_.run.tr("T-NR", "A-NO");
    if (column == 1) return ctx_.run.tr("LEERDER", "LEARNER");
    const ColumnLists& lists = book_->lists;
    const double average = column < int(averages_.size()) ? averages_[std::size_t(column)].to_double() : 0;
    return lists.name(column) + "\n" + lists.at(1, column) + "\n" + format_mask(average, " ###0.0");
}

bool MarkBookInput::column_hidden(int column) const {
    return book_ && column >= 2 && book_->lists.name(column).trimmed().isEmpty();
}

bool MarkBookInput::column_takes_marks(int column) const {
    return book_ && column >= 2 && column < column_count() && !column_hidden(column) && !book_->lists.is_total(column);
}

bool MarkBookInput::go_to(int row) {
    DbfTable& t = *book_->table;
    if (row < 0 || row >= t.RecordCount()) return false;
    if (t.position() != row) {
        t.MoveFirst();
        t.Move(row);
    }
    return !t.Eof();
}

QString MarkBookInput::cell(int row, int column) {
    if (!book_ || !go_to(row)) return {};
    return toets_null_text(book_->table->value(column));
}

int MarkBookInput::column_entered(int column, int from) const {
    if (!book_ || column < 2) return 2;
    const int last = column_count() - 1;
    bool forward = column > from;
    int c = std::min(column, last);
    // Past totals (and the hidden columns of unnamed rows): on in the
    // direction of travel while there is a column, else back.
    for (int guard = 0; guard < 2 * 42 && c >= 2 && !column_takes_marks(c); ++guard) {
        if (forward && c < last) {
            ++c;
        } else {
            forward = false;
            --c;
        }
    }
    return c < 2 ? 2 : c;
}

void MarkBookInput::table_failed() {
    ctx_.dialogs.message(dbf_error_message(book_->table->last_error(), ctx_.run.language_afrikaans), MsgIcon::Critical);
}

bool MarkBookInput::cell_changed(int row, int column, const QString& typed) {
    activity();
    if (!book_ || !column_takes_marks(column) || !go_to(row)) return false;
    switch (store_typed_mark(ctx_.run, *book_->table, book_->lists, column, typed)) {
        case TypedMark::Stored: return true;
        case TypedMark::Refused: return false;
        case TypedMark::Failed: table_failed(); return false;
    }
    return false;
}

void MarkBookInput::activity() { reset_activity(ctx_.run, ctx_.clock); }

bool MarkBookInput::pboek_inlees_totale(const std::function<void(int, int)>& progress) {
    if (!book_) return false;
    const bool written = recalculate_totals(*book_->table, book_->lists, progress);
    if (!written) table_failed();
    // Back to the list: opening the book again rebuilds it and its averages.
    book_.reset();
    return written;
}

void MarkBookInput::pboek_inlees_undo() {
    // Nothing is kept to go back to: the prompt is all there is.
    ctx_.dialogs.message(ctx_.run.tr("'UNDO' sal punte na vorige waardes herstel!", "'UNDO' reset marks to previous values!"),
                         MsgIcon::None, MsgButtons::OkCancel);
}

void MarkBookInput::pboek_inlees_print() {
    ctx_.run.print_series_row = book_ ? series_row_ : -1;
    ctx_.screens.show_modal(screen::pboek_druk);
    ctx_.run.print_series_row = -1;
}

void MarkBookInput::pboek_inlees_calculator() { ctx_.screens.show_modal(screen::MathCalc); }

bool MarkBookInput::heading_click(int column) {
    activity();
    if (!book_ || column <= 1) return false;
    chosen_column_ = column;
    return true;
}

void MarkBookInput::kol_opsie_click(int item) {
    if (!book_ || chosen_column_ < 2) return;
    const int c = chosen_column_;
    const ColumnLists& lists = book_->lists;
    RunState& run = ctx_.run;
    if (item != 1) {
        const QString title = series_title(series_.value(series_row_));
        printer_.print([&](ReportRun& r) { return print_merit_list(r, *book_->table, lists.name(c), c, title); });
        return;
    }
    if (lists.is_total(c)) {
        ctx_.dialogs.message(scaling_total_column_message(run), MsgIcon::Exclamation);
        return;
    }
    const double current = averages_[std::size_t(c)].to_double();
    const QString answer = ctx_.dialogs.input(scaling_prompt(run, current), QString(), averages_[std::size_t(c)].text());
    const double wanted = Val(answer.trimmed());
    if (wanted == 0) return;
    if (!scale_column(*book_->table, lists, c, current, wanted)) table_failed();
    show_averages();
}

bool MarkBookInput::skuif_leerders() {
    activity();
    move_ = std::make_unique<MoveLearners>(ctx_.store, ctx_.dialogs);
    if (move_->choose_groups()) return true;
    move_.reset();
    return false;
}

QString MarkBookInput::skuif_tip() const {
    return ctx_.run.tr(" SKUIF LEERDERS TUSSEN POS-/KLAS GROEPE EN BEHOU INGELEESDE PUNTE ",
                       " MOVE LEARNERS BETWEEN POST-/CLASS GROUPS RETAINING ENTERED MARKS ");
}

QString MarkBookInput::skuif_caption() const { return ctx_.run.tr("SKUIF LEERDERS", "MOVE LEARNERS"); }

QStringList MarkBookInput::skuif_list() const { return move_ ? move_->learners() : QStringList(); }

bool MarkBookInput::skuif_click(int position) {
    activity();
    return move_ && move_->move_learner(position);
}

void MarkBookInput::skuif_close() { move_.reset(); }

void MarkBookInput::copy_ok(int from_item, int to_item) {
    if (!book_) return;
    const auto& names = book_->lists.kopieer_reeks;
    if (from_item < 0 || to_item < 0 || from_item >= names.size() || to_item >= names.size()) return;
    const auto& from = names[from_item];
    const auto& to = names[to_item];
    if (ctx_.dialogs.message(copy_column_question(ctx_.run, from.first, to.first), MsgIcon::Question,
                             MsgButtons::YesNo) != MsgAnswer::Yes)
        return;
    if (!copy_column(*book_->table, from.second, to.second)) table_failed();
}

void MarkBookInput::paste_into_flex(int column) {
    if (!book_) return;
    if (column <= 0) {
        ctx_.dialogs.message(paste_no_column_message(ctx_.run), MsgIcon::Exclamation);
        return;
    }
    if (ctx_.dialogs.message(paste_warning(ctx_.run), MsgIcon::Critical, MsgButtons::YesNo) != MsgAnswer::Yes) return;
    if (!paste_column(*book_->table, column, ctx_.dialogs.clipboard_text())) table_failed();
}

void MarkBookInput::marks_exit() {
    activity();
    if (book_) {
        // Every mark is in the table already: back to the list.
        book_.reset();
        return;
    }
    query_unload();
    ctx_.screens.unload(screen::pboek_inlees);
    ctx_.screens.show(screen::punte_menu2);
}

void MarkBookInput::query_unload() {
    if (ctx_.dialogs.message(ctx_.run.tr("DRUK 'N PUNTELYS ?", "PRINT A MARK LIST ?"), MsgIcon::Question,
                             MsgButtons::YesNo) == MsgAnswer::Yes)
        pboek_inlees_print();
    book_.reset();
}

}  // namespace veldo
