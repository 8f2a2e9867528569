#pragma once
// pboek_druk's window: the series list, PRINT and EXIT.

#include <QWidget>

class QLabel;
class QTableWidget;

namespace veldo {

class MarkBookPrintScreen;

class MarkBookPrintWidget : public QWidget {
    Q_OBJECT
public:
    MarkBookPrintWidget(MarkBookPrintScreen& screen, QWidget* parent = nullptr);
    QTableWidget* series_list() const { return vak_grid_; }

private:
    MarkBookPrintScreen& screen_;
    QTableWidget* vak_grid_;
    QLabel* vak_ops_;
};

}  // namespace veldo
