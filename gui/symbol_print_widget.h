#pragma once
// simbole_druk's window: the series list, the distribution grid, PRINT and
// EXIT. Every event goes to SymbolPrintScreen.

#include <QWidget>

class QLabel;
class QTableWidget;

namespace veldo {

class SymbolPrintScreen;

class SymbolPrintWidget : public QWidget {
    Q_OBJECT
public:
    SymbolPrintWidget(SymbolPrintScreen& screen, QWidget* parent = nullptr);
    QTableWidget* series_list() const { return vak_grid_; }
    QTableWidget* distribution() const { return pnt_grid_; }

private:
    void choose(int row);

    SymbolPrintScreen& screen_;
    QTableWidget* vak_grid_;
    QTableWidget* pnt_grid_;
    QLabel* vak_ops_;
};

}  // namespace veldo
