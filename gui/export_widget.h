#pragma once
// pboek_uitvoer's window: the series list, then the task list of the chosen
// series, the progress bar and EXIT. Every event goes to MarkBookExport.

#include <QWidget>

class QLabel;
class QProgressBar;
class QTableWidget;

namespace veldo {

class MarkBookExport;

class ExportWidget : public QWidget {
    Q_OBJECT
public:
    ExportWidget(MarkBookExport& screen, QWidget* parent = nullptr);
    QTableWidget* series_list() const { return vak_grid_; }
    QTableWidget* task_list() const { return msflexgrid2_; }
    QProgressBar* progress_bar() const { return progress_; }

private:
    void refresh();

    MarkBookExport& screen_;
    QTableWidget* vak_grid_;
    QTableWidget* msflexgrid2_;
    QProgressBar* progress_;
    QLabel* vak_ops_;
    QLabel* dir_disp_;
};

}  // namespace veldo
