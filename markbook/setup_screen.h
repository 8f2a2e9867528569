#pragma once
// pboek_opstel: the list of subject combinations, then the 40 rows of the
// chosen one's setup, edited a row at a time in the panel, by inserting or
// removing a row with its marks, or from the example book. UPDATE writes the
// setup file and brings the marks table into step.

#include <QList>
#include <QString>
#include <QStringList>
#include <array>

#include "markbook/setup_model.h"
#include "shell/form_header.h"

namespace veldo {

class PrintService;
struct ShellContext;

class SetupScreen {
public:
    SetupScreen(ShellContext& ctx, PrintService& printer);

    // The audit record, the captions, the series list and both copy lists.
    // False when the screen went again.
    bool load();
    QString caption() const;  // "PUNTEBOEK OPSTEL" / "MARK BOOK SETUP"
    bool afrikaans() const;
    // OPDATEER, STOOR PUNTEBOEK OPSTELLING, VOORBEELD, DRUK, EXIT, then the
    // panel's OK, insert, remove and the copy button, by language.
    QStringList button_captions() const;
    QStringList panel_headings() const;  // "NOMMER" ... "SIKLUSNAAM"
    QString school() const;
    QString data_folder() const;
    const FormHeader& header() const { return header_; }
    const QList<QStringList>& series() const { return series_rows_; }
    QStringList copy_items() const;

    // A click on vak_grid: the setup of that combination in the grid.
    bool choose_subject(int row);
    bool list_shown() const { return list_shown_; }
    QString vak_ops() const { return vak_ops_; }
    int series_number() const { return number_; }
    QString key() const { return key_; }  // the key the file is saved under

    // pboek_grid: rows 1 to 40.
    const MarkBookSetup& setup() const { return setup_; }
    // The name cell's colour (0xBBGGRR) of row 1 to 40.
    int name_colour(int row) const { return colours_[std::size_t(row - 1)]; }
    // A click on a row: it becomes current, the colouring is brought up to
    // date and the panel loaded.
    void select_row(int row);
    int current_row() const { return current_; }

    // The panel: pboek_data(0..5). Typing in boxes 1 to 5 turns a to z into
    // capitals; leaving box 2, 3 or 4 with text that is neither blank nor a
    // number beeps and keeps the focus there (false).
    const std::array<QString, 6>& panel() const { return panel_; }
    void type_into(int box, const QString& text);
    bool leave_box(int box);
    // pboek_data_ok: the panel into the current row (a blank name beeps).
    bool pboek_data_ok();

    // Insert before a line asked for, remove the current row: the targets
    // adjusted, the marks of every learner moved along, then the save.
    bool pboek_data_ins();
    bool pboek_data_del();

    // pboek_opstel_stoor: the setup file, then the marks table in step.
    bool pboek_opstel_stoor();
    // pboek_opstel_save: the save, then back to the list.
    bool pboek_opstel_save();
    // pboek_opstel_help, Shift with "/": the example over rows 1 to 21.
    void pboek_opstel_help();
    bool pboek_opstel_print();

    // The explanation panel (a right click on the grid): the text of
    // kolom_info.afr or kolom_info.eng in the program's folder.
    void show_explanations();
    bool explanations_shown() const { return explanations_shown_; }
    QString explanations() const { return explanations_; }
    void set_explanations(const QString& text) { explanations_ = text; }
    bool kb_druk();
    // kb_ok: closes the panel; at the school "VELDO-HOUSE" the text is
    // written back to its file first.
    void kb_ok();

    // The copy frame (pboek_copy): copy_ok copies the setup of `source` to
    // each destination that is answered Yes.
    void pboek_copy() { copy_shown_ = true; }
    bool copy_shown() const { return copy_shown_; }
    int copy_ok(int source, const QList<int>& destinations);

    void pboek_opstel_exit();

    // How the rows of `setup` move when a row is inserted before `line` or
    // row `row` is removed.
    static void insert_rows(MarkBookSetup& setup, int line);
    static void remove_row(MarkBookSetup& setup, int row);

private:
    bool move_marks(int from_field, bool inserting);
    void paint_totals();
    QString explanations_path() const;

    ShellContext& ctx_;
    PrintService& printer_;
    FormHeader header_;
    QList<QStringList> series_rows_;
    bool list_shown_ = true;
    QString vak_ops_;
    int number_ = 0;
    QString key_;
    MarkBookSetup setup_;
    std::array<int, kSetupRows> colours_{};
    int current_ = 1;
    std::array<QString, 6> panel_;
    bool explanations_shown_ = false;
    QString explanations_;
    bool copy_shown_ = false;
};

}  // namespace veldo
