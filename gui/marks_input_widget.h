#pragma once
// punte_inlees's window: the series list, then the marks grid of one series
// with its running total and average (a click on the average scales) and
// the buttons. Every event goes to MarksInput. The same window serves
// obe_inlees (AssessmentInput): its mode panel, its two check boxes, the
// lookup list beside the grid and the paste panel come in besides.

#include <QWidget>

class QVBoxLayout;

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace veldo {

class AssessmentInput;
class MarksInput;
class MarksGridModel;
class MarksGridView;

class MarksInputWidget : public QWidget {
    Q_OBJECT
public:
    MarksInputWidget(MarksInput& input, QWidget* parent = nullptr);

    QTableWidget* series_list() const { return vak_grid_; }
    MarksGridView* grid() const { return grid_; }
    QPushButton* button(const QString& name) const;
    QLabel* label(const QString& name) const;
    QGroupBox* mode_panel() const { return mode_panel_; }
    QGroupBox* paste_panel() const { return paste_panel_; }
    QListWidget* lookup_list() const { return lookup_list_; }
    // Shows the state the screen's logic is in.
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void open_row(int row);
    // Reads the grid anew and puts the cursor on `row` of `column`, with the
    // keyboard in the grid.
    void reload_at(int row, int column);
    // After a cell was left: the key of the same learner or the next mark.
    void move_on(const QModelIndex& from);
    // The assessment screen's parts.
    void build_assessment_parts(QVBoxLayout* layout);
    void start_with_mode();
    void paste_into(int target);
    // The lookup list of the current cell's column, beside it, or none.
    void place_lookup();
    void choose_lookup();

    MarksInput& input_;
    MarksGridModel* model_;
    QLabel* vak_ops_;
    QLabel* ops_totale_;
    QLabel* total_;
    QPushButton* average_;
    QTableWidget* vak_grid_;
    MarksGridView* grid_;
    QProgressBar* progress_;
    QList<QPushButton*> series_buttons_;
    bool refused_ = false;
    AssessmentInput* assessment_ = nullptr;
    QGroupBox* mode_panel_ = nullptr;
    QButtonGroup* modes_ = nullptr;
    QGroupBox* paste_panel_ = nullptr;
    QButtonGroup* paste_targets_ = nullptr;
    QListWidget* lookup_list_ = nullptr;
    int lookup_kind_ = 0;
};

}  // namespace veldo
