#pragma once
// punte_inlees's window: the series list, then the marks grid of one series
// with its running total and average (a click on the average scales) and
// the buttons. Every event goes to MarksInput.

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace veldo {

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
};

}  // namespace veldo
