#pragma once
// obe_inlees: outcomes-based assessment of one mark series. The cycle marks
// screen with the two tables swapped: the grid edits `obe_p<K>.dbf` (mark,
// effort key, four formative marks), and the save copies the marks back into
// `punte<K>.dbf`. A mode, chosen after the input total, says which columns
// the grid shows. Beside the grid two optional lookup lists offer the effort
// keys and the formative codes of the subject.

#include "input/marks_input.h"

namespace veldo {

// Fields of `obe_p<K>.dbf` by position beyond the three the two tables share.
inline constexpr int kAssessmentKey = 3;
inline constexpr int kAssessmentFormativeFirst = 4;
inline constexpr int kAssessmentFormativeLast = 7;

struct LookupItem {
    QString key;
    QString text;
    QString display() const { return key + " " + text; }
};

// The effort keys of table `L<base>_P_S` (key and text, the first two
// fields), rows with a blank key passed over, then "GEEN"/"NONE" under a
// blank key. Empty when there is no table.
QList<LookupItem> read_effort_keys(ShellContext& ctx, const QString& base);
// The formative list `L<base>_f_e.<extension>` of the data folder: pairs of
// lines, code then description, each code padded with "0" on the left to the
// longest code. Empty when there is no file.
QList<LookupItem> read_formative_list(const QString& folder, const QString& base, const QString& extension);

// The shared list printer: the rows of `grid` (row 0 its headings) under
// the page head and the list's own head ("DRUK PUNTE", "BLADSY : <n>"), each
// field right-aligned to its column's widest text, the fields separated by
// "¦"; at the end the number of learners with a mark and their sum
// ("####.0"), and the average ("###.0"). Column `mark_column` holds the
// marks (-1: none); "A" in either case counts as no mark. False when the
// output choice was cancelled.
bool print_marks_list(ReportRun& r, const QString& title, const QString& subtitle, const QString& paper,
                      TextGrid& grid, int mark_column);

class AssessmentInput : public MarksInput {
public:
    enum Mode { NoMode = -1, Summative = 0, EffortKeys = 1, Formative = 2, MultiAssessment = 3 };
    enum Lookup { NoList = 0, EffortKeyList = 1, FormativeList = 2 };

    using MarksInput::MarksInput;

    QString caption() const override;  // "UGO INLEES" / "OBE INPUT"
    // inlees_opsie_raam: the four options.
    QStringList mode_captions() const;
    // After a series and its input total: the mode panel is up.
    bool choosing_mode() const { return choosing_mode_; }
    // io_ok with the marked option; NoMode acts as exit. False when nothing
    // opened.
    bool io_ok(int mode);
    int mode() const { return mode_; }

    // The lookup lists' names: the subject (blanks as "_") and the grade
    // without "/" and "-", of the chosen series.
    QString list_base_name() const;
    QString list_extension() const;
    const QList<LookupItem>& effort_keys() const { return effort_keys_; }
    const QList<LookupItem>& formative_list() const { return formative_; }
    // The two check boxes, kept in user_info.txt of the data folder.
    bool ps_info() const { return ps_info_; }
    bool fe_info() const { return fe_info_; }
    void set_ps_info(bool on);
    void set_fe_info(bool on);
    QStringList info_captions() const;  // "VERTOON PS-LYS", "VERTOON FE-LYS" or their English
    QStringList info_tips() const;
    // The list that appears beside a cell of `column`.
    Lookup lookup_for(int column) const;
    // The row of `list` whose key is `value`, or -1.
    int lookup_row(Lookup list, const QString& value) const;
    // A double click or Enter on `item` of `list`: its key into the cell.
    bool choose_lookup(Lookup list, int item, int row, int column);

    // paste_raam, after the warning: the heading, the three targets, the tip.
    bool pasting() const { return pasting_; }
    QString paste_heading() const;
    QStringList paste_targets() const;
    QString paste_tool_tip() const;
    QString cancel_caption() const;  // "KANSELLEER" / "CANCEL"
    // pr_ok with the chosen target (0 mark, 1 effort key, 2 first formative
    // mark); -1 is Cancel.
    void pr_ok(int target);

    QList<int> column_widths() const override { return {800, 3000, 1000, 700, 650, 650, 650, 650}; }
    bool column_shown(int column) const override;
    QString heading(int column) const override;
    int column_entered(int column, int from) const override;
    std::pair<int, int> next_cell(int row, int column) const override;
    // The visible fields, one tab-separated row per record under a heading
    // row, through the shared list printer.
    bool marks_print() override;
    // drk_grid of this screen: the heading row, then one row per record.
    void fill_print_grid(TextGrid& grid);

protected:
    QString screen_name() const override;
    QString table_stem() const override { return "OBE_P"; }
    int table_columns() const override { return 8; }
    bool layout_fits(const DbfTable& table, DbfError* error) const override;
    bool input_total_chosen() override;
    void before_sort() override;
    bool counts_keyed_marks() const override { return false; }
    bool copy_into_partner() override;
    QString undo_warning() const override;
    QStringList paste_warning() const override;
    void paste_confirmed() override { pasting_ = true; }
    void remember_user_info() override;

private:
    int first_shown_from(int column) const;
    void write_user_info();

    bool choosing_mode_ = false;
    bool pasting_ = false;
    int mode_ = NoMode;
    bool ps_info_ = false;
    bool fe_info_ = false;
    QList<LookupItem> effort_keys_;
    QList<LookupItem> formative_;
};

}  // namespace veldo
