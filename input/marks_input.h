#pragma once
// punte_inlees: one mark per learner for one mark series (a cycle test, a
// test, a CASS or CTA component), typed out of any total. Two states: the
// series list (vak_grid), and one series open in the marks grid. The marks
// live in `punte<K>.dbf`; the grid edits that table in place, out of the
// input total while the series is open, and the save brings them back to
// the series' own total and copies each into `obe_p<K>.dbf`. Each opening
// leaves a copy of the table as it stood in `punte<K>.bak`, the source of
// undo.

#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>

#include "shell/editable_grid.h"
#include "shell/form_header.h"
#include "util/legacy_number.h"

namespace veldo {

class DbfTable;
struct DbfError;
class PrintService;
class TextGrid;
struct ReportRun;
struct ShellContext;

// Fields of `punte<K>.dbf` by position.
inline constexpr int kClassListNumber = 0;
inline constexpr int kClassListName = 1;
inline constexpr int kClassListMark = 2;
inline constexpr int kClassListKey = 3;

// The title of a series on this screen's print: grade, subject with its
// blanks as "_", class (or else group), a blank and the second class part.
QString marks_list_title(const QStringList& series_row);

// drk_grid: a heading row ("<NR|^  T.NR|<LEERDER|>  PUNT|PS/VO|>  TOTAAL|"),
// then per record in table order its running number, admission number,
// name, mark and key right-aligned in 5 places and the running total of the
// marks in 7 ("######.0"). "A", "a" and empty marks don't count. Gives the
// list's sum and its count of marks. With `sort_by_column` the rows are
// sorted by number, descending, on column 2.
struct MarksListSum {
    double sum = 0;
    int count = 0;
};
MarksListSum fill_marks_print_grid(TextGrid& grid, DbfTable& marks, bool afrikaans, bool sort_by_column = false);
// The print of the list: portrait pages with the head, the page foot
// ("<page>.../"), and the two average lines under the last row ("GEMIDDELD
// := " and the average out of the input total, then the percentage). False
// when the output choice was cancelled.
bool print_cycle_marks_list(ReportRun& r, DbfTable& marks, const QString& title, double input_total);

// The screen's logic. The assessment screen (obe_inlees) is this one with
// the two tables swapped; what differs is behind the virtual members.
class MarksInput : public EditableGrid {
public:
    MarksInput(ShellContext& ctx, PrintService& printer);
    ~MarksInput() override;

    // The caption, tool tips, header and series list; carries `user_info.txt`
    // of the program folder along with the data folder as its first line.
    // False when the audit record can't be written (message shown).
    bool load();
    // The series list alone, as the command line needs it.
    void list_series();

    virtual QString caption() const;  // "PUNTE INLEES" / "MARKS INPUT"
    // "SAKREKENAAR", "UNDO", "SKRYF", "DRUK", "'PASTE'", "EXIT" or their
    // English, and the tool tips of the first five and of the average.
    QStringList button_captions() const;
    QStringList tool_tips() const;
    QString average_tool_tip() const;
    const FormHeader& header() const { return header_; }
    // ops_ops1 and dir_disp: the school's name and the data folder.
    QString school_name() const;
    QString data_folder() const;
    // The captions beside the two labels: "TOTAAL", "GEMIDDELD %" or their English.
    QStringList figure_captions() const;

    // The list state.
    const QList<QStringList>& series() const { return series_; }
    bool series_open() const { return open_; }
    // A click or Enter on row `row` of vak_grid: the input total, the
    // backup, the effort key question, the sort by name and the conversion.
    // False when nothing opened (a missing table beeps, a foreign or
    // unreadable one says why).
    bool open_subject(int row);
    // The grid's column widths in twips, and whether a column shows.
    virtual QList<int> column_widths() const { return {1000, 6000, 1100, 800}; }
    virtual bool column_shown(int) const { return true; }
    QString vak_ops() const { return vak_ops_; }  // "PUNTE INLEES 8 AFR" once a series is chosen
    QString ops_totale() const { return ops_totale_; }  // "<subject total> -- <input total>"
    // Hears the sort's progress (done, count) while a series opens.
    void set_progress(const std::function<void(int, int)>& progress);
    double input_total() const { return input_total_; }
    double subject_total() const { return subject_total_; }
    bool effort_keys_wanted() const { return effort_keys_wanted_; }

    // The open series in the grid.
    int learner_count() const override;
    int column_count() const override { return open_ ? table_columns() : 0; }
    QString heading(int column) const override;
    QString cell(int row, int column) override;
    bool column_takes_marks(int column) const override { return open_ && column >= 2 && column < table_columns(); }
    int column_entered(int column, int from) const override;
    // A cell left with a changed value. Column 2: the range test with the
    // running sum, the mark stored with one decimal; column 3 takes any
    // key. False when refused (beep and message) or not written (message).
    bool cell_changed(int row, int column, const QString& typed) override;
    void activity() override;
    // Where the cursor goes after a cell of `column` on `row` was left:
    // the key of the same learner while effort keys are typed, else the
    // mark of the next learner.
    virtual std::pair<int, int> next_cell(int row, int column) const;

    // The two labels: the running total ("####0.0") and the average in
    // percent ("##0.0"); empty until there is a sum above 0.
    QString total_text() const { return total_text_; }
    QString average_text() const { return average_text_; }
    float sum_of_marks() const { return sum_of_marks_; }
    float mark_count() const { return mark_count_; }
    Currency average_percent() const { return average_percent_; }
    bool save_enabled() const { return save_enabled_; }

    // Buttons.
    void marks_calculator();
    // Back to the series' own total, the copy into obe_p<K>.dbf, back to
    // the list. False when a table could not be written (message shown).
    bool marks_save();
    void marks_undo();
    // What undo does once it was confirmed: the backup over the table, which
    // is opened again. False when that failed (message shown).
    bool restore_backup();
    // The print of the list through the output dialog; false when cancelled.
    virtual bool marks_print();
    // A click on the mark column's heading: the same list.
    bool heading_click(int column);
    // A click on the average: scaling to a new average.
    void scale_marks();
    void paste_into_flex();
    // What the table and the grid hold. Public for the widget's sake.
    bool has_table() const { return table_ != nullptr; }
    // From a series: save, offer the list, back to the list. From the list:
    // the screen closes and the menu comes.
    void marks_exit();

protected:
    // Hooks of the two screens.
    virtual QString screen_name() const;
    virtual QString table_stem() const { return "PUNTE"; }  // <stem><K>.DBF and .BAK
    virtual int table_columns() const { return 4; }
    // False, with `error`, when an opened table lacks the fields the grid edits.
    virtual bool layout_fits(const DbfTable& table, DbfError* error) const;
    // After the input total: the whole opening here; the assessment screen
    // first asks for its mode.
    virtual bool input_total_chosen() { return open_chosen(); }
    // After the backup, before the sort: the conversion message and the
    // effort key question here.
    virtual void before_sort();
    // Keyed marks count towards the average's count.
    virtual bool counts_keyed_marks() const { return true; }
    // The copy of every mark into the other table, after the conversion back.
    virtual bool copy_into_partner();
    virtual QString undo_warning() const;
    virtual QStringList paste_warning() const;
    // After the warning was answered Yes.
    virtual void paste_confirmed() { paste_column(kClassListMark, true); }
    // user_info.txt on load.
    virtual void remember_user_info();

    // The marks in `field` from the clipboard, one line per learner; as a
    // mark with one decimal, or as the plain text.
    void paste_column(int field, bool as_mark);
    // The rest of the opening, once the input total (and mode) are known.
    bool open_chosen();
    // Every mark into `stem`<K>.DBF by admission number, a learner who isn't
    // there added with the number as `number_value` gives it, the mark as
    // `mark_value` gives it.
    bool copy_marks_into(const QString& stem, const QString& number_field, const QString& mark_field,
                         const std::function<QVariant(const QVariant&)>& number_value,
                         const std::function<QVariant(const QVariant&)>& mark_value);
    bool table_failed();
    QString series_title() const;
    bool go_to(int row);
    void show_totals();
    // Brings the marks to the input total; with `count_marks` the running
    // sum and count are taken anew and shown.
    bool load_marks(bool count_marks = true);
    bool sort_by_name();
    bool ask_input_total();

    ShellContext& ctx_;
    PrintService& printer_;
    FormHeader header_;
    QList<QStringList> series_;
    QString vak_ops_, ops_totale_;
    int subject_row_ = -1;
    QString marks_path_, backup_path_;
    std::unique_ptr<DbfTable> table_;
    bool open_ = false;
    double input_total_ = 0;
    double subject_total_ = 0;
    float sum_of_marks_ = 0;
    float mark_count_ = 0;
    Currency average_percent_;
    bool effort_keys_wanted_ = false;
    bool marks_changed_ = false;
    bool list_printed_ = false;
    bool save_enabled_ = false;
    QString total_text_, average_text_;
    std::function<void(int, int)> progress_;
};

}  // namespace veldo
