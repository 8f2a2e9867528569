#pragma once
// punte_druk's window: the series with their stored totals, the print total,
// alphabetical or rank order, print and exit. Every event goes to MarkLists.

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableWidget;

namespace veldo {

class MarkLists;

class MarkListsWidget : public QWidget {
    Q_OBJECT
public:
    MarkListsWidget(MarkLists& lists, QWidget* parent = nullptr);

    QTableWidget* series_list() const { return subject_list_; }
    QLineEdit* print_total() const { return druk_tot_; }
    QPushButton* print_button() const { return print_; }
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void select(int row);

    MarkLists& lists_;
    QLabel* vak_ops_;
    QTableWidget* subject_list_;
    QLineEdit* druk_tot_;
    QRadioButton* alphabetic_;
    QRadioButton* rank_;
    QPushButton* print_;
};

}  // namespace veldo
