#pragma once
// pboek_inlees's window: the series list, then the marks grid with its
// buttons, the column menu on a heading click and the copy frame. Every
// event goes to MarkBookInput.

#include <QWidget>

class QComboBox;
class QFrame;
class QListWidget;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace veldo {

class MarkBookInput;
class MarksGridModel;
class MarksGridView;

class MarkBookInputWidget : public QWidget {
    Q_OBJECT
public:
    MarkBookInputWidget(MarkBookInput& input, QWidget* parent = nullptr);

    QTableWidget* series_list() const { return vak_grid_; }
    MarksGridView* grid() const { return grid_; }
    QPushButton* button(const QString& name) const;
    // Shows the state the screen's logic is in.
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void open_row(int row);
    // Reads the grid anew after a column action and puts the cursor back on
    // `row` of `column` (a learner column or a total column lands where the
    // grid's movement would), with the keyboard in the grid.
    void reload_at(int row, int column);
    void heading_clicked(int column);
    void column_moved(const QModelIndex& now, const QModelIndex& before);

    MarkBookInput& input_;
    MarksGridModel* model_;
    QLabel* title_;
    QLabel* vak_info_;
    QTableWidget* vak_grid_;
    MarksGridView* grid_;
    QProgressBar* progress_;
    QFrame* kopieer_raam_;
    QFrame* skuif_raam_;
    QListWidget* ppl_skuif_lys_;
    QPushButton* skuif_leerders_;
    QComboBox* kopieer_reeks_[2];
    QList<QPushButton*> book_buttons_;
    bool refused_ = false;
};

}  // namespace veldo
