#pragma once
// pboek_inlees: the screen on which a teacher types marks. Two states: the
// list of subject combinations (vak_grid), and one open book in the marks
// grid. Every accepted mark goes to the table at once; the column actions
// work on the open table; the print goes through pboek_druk.

#include <QString>
#include <QStringList>
#include <array>
#include <functional>
#include <memory>

#include "markbook/marks_table.h"
#include "shell/editable_grid.h"
#include "shell/form_header.h"
#include "util/legacy_number.h"

namespace veldo {

class MoveLearners;
class PrintService;
struct ShellContext;

class MarkBookInput : public EditableGrid {
public:
    MarkBookInput(ShellContext& ctx, PrintService& printer);
    ~MarkBookInput() override;

    // The load: false when the data folder or its control files are
    // missing (the message has been shown, the screen unloaded and the menu
    // shown) or the audit record can't be written.
    bool load();

    // "PUNTEBOEK INLEES", "SAKREKENAAR", "UNDO", "HERBEREKEN TOTALE", "DRUK",
    // "'COPY'", "'PASTE'", "'PRINT SCREEN'", "EXIT" or their English.
    QStringList captions() const;
    // The two choices of kol_opsies with their help lines.
    QStringList column_choices() const;
    QStringList column_choice_help() const;
    const FormHeader& header() const { return header_; }

    // The list state.
    const QList<QStringList>& series() const { return series_; }
    bool book_open() const { return book_ != nullptr; }
    // A click on row `row` of vak_grid: opens that book (checks, rebuild,
    // setup, averages). False, with the system's message shown, when the
    // book can't be opened; the list stays.
    bool vak_grid_click(int row);
    QString vak_info() const { return vak_info_; }

    // The book state: field indexes are the grid's columns.
    int learner_count() const override;
    int column_count() const override;  // 42
    QString heading(int column) const override;  // name, total and class average on three lines
    bool column_hidden(int column) const;  // the columns of unnamed rows
    bool column_takes_marks(int column) const override;
    // The stored text of a cell.
    QString cell(int row, int column) override;
    // The column the cursor lands on when it enters `column` coming from
    // `from`: past the learner's columns and the totals.
    int column_entered(int column, int from) const override;
    // A cell left with a changed value: the range test and the store with
    // its running figure. False when the edit is refused (beep and message
    // shown) or could not be written (message shown): the grid cancels it.
    bool cell_changed(int row, int column, const QString& typed) override;
    // Any key or click on the screen counts as activity.
    void activity() override;
    const OpenMarkBook* book() const { return book_.get(); }

    // Buttons.
    // Recalculates every total (`progress` hears done/count) and goes back to
    // the list. False when the table could not be written (message shown).
    bool pboek_inlees_totale(const std::function<void(int, int)>& progress = {});
    void pboek_inlees_undo();
    void pboek_inlees_print();
    void pboek_inlees_calculator();
    // A heading click: true when the column menu is to be shown.
    bool heading_click(int column);
    int chosen_column() const { return chosen_column_; }
    // kol_opsies: 1 scales the chosen column, any other the merit list print.
    void kol_opsie_click(int item);
    // kopieer_raam's OK: the positions chosen in the two lists of named rows
    // (-1 for none).
    void copy_ok(int from_item, int to_item);
    // Pastes the clipboard into `column`, the grid's current column.
    void paste_into_flex(int column);

    // EXIT: from a book back to the list; from the list the screen closes
    // and the menu is shown.
    void marks_exit();
    // Closing the screen: offers the print of a mark list ("DRUK 'N
    // PUNTELYS ?") and lets the book go.
    void query_unload();

    // skuif_leerders: the two groups asked for; true when the learner list
    // of the from group (skuif_raam) is to be shown.
    bool skuif_leerders();
    QString skuif_tip() const;
    QString skuif_caption() const;
    QStringList skuif_list() const;
    // A click on the list: the learner with the marks to the other group.
    bool skuif_click(int position);
    void skuif_close();

private:
    bool refuse(const QString& text);
    void show_averages();
    bool go_to(int row);
    void table_failed();

    ShellContext& ctx_;
    PrintService& printer_;
    FormHeader header_;
    QList<QStringList> series_;
    int series_row_ = -1;
    QString vak_info_;
    std::unique_ptr<OpenMarkBook> book_;
    std::unique_ptr<MoveLearners> move_;
    std::array<Currency, 43> averages_{};
    int chosen_column_ = -1;
};

}  // namespace veldo
