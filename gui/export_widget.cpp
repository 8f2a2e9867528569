#include "gui/export_widget.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "exchange/export_screen.h"
#include "gui/screen_parts.h"

namespace veldo {

ExportWidget::ExportWidget(MarkBookExport& screen, QWidget* parent) : QWidget(parent), screen_(screen) {
    setObjectName("pboek_uitvoer");
    paint_form(this);
    resize(900, 640);
    auto* layout = new QVBoxLayout(this);
    dir_disp_ = add_screen_head(layout, this, screen_.school(), screen_.caption(), screen_.data_folder());
    vak_ops_ = screen_title(QString(), this);
    vak_ops_->setObjectName("vak_ops");
    layout->addWidget(vak_ops_);

    vak_grid_ = veldo::series_list(screen_.series(), this);
    auto choose = [this](int row, int) {
        screen_.choose_series(row);
        refresh();
        if (msflexgrid2_->isVisible()) msflexgrid2_->setFocus();
    };
    connect(vak_grid_, &QTableWidget::cellDoubleClicked, this, choose);
    connect(vak_grid_, &QTableWidget::cellActivated, this, choose);
    layout->addWidget(vak_grid_, 1);

    msflexgrid2_ = new QTableWidget(this);
    msflexgrid2_->setObjectName("msflexgrid2");
    msflexgrid2_->verticalHeader()->hide();
    msflexgrid2_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    msflexgrid2_->setSelectionBehavior(QAbstractItemView::SelectRows);
    msflexgrid2_->setSelectionMode(QAbstractItemView::SingleSelection);
    QFont fixed("Courier New");
    fixed.setStyleHint(QFont::Monospace);
    msflexgrid2_->setFont(fixed);
    // Row 1 of the task list is task 1; the heading row is row 0.
    connect(msflexgrid2_, &QTableWidget::cellDoubleClicked, this, [this](int row, int) {
        screen_.export_task_row(row + 1);
        refresh();
    });
    connect(msflexgrid2_->horizontalHeader(), &QHeaderView::sectionDoubleClicked, this, [this](int) {
        screen_.export_task_row(0);
        refresh();
    });
    msflexgrid2_->hide();
    layout->addWidget(msflexgrid2_, 1);

    progress_ = new QProgressBar(this);
    progress_->setObjectName("ProgressBar1");
    progress_->hide();
    layout->addWidget(progress_);
    screen_.on_progress = [this] {
        progress_->setVisible(screen_.progress_visible());
        progress_->setRange(0, std::max(1, screen_.progress_max()));
        progress_->setValue(screen_.progress_value());
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    };

    auto* buttons = new QHBoxLayout;
    auto* exit = new QPushButton(screen_.exit_caption(), this);
    exit->setObjectName("pboek_uitvoer_exit");
    connect(exit, &QPushButton::clicked, this, [this] { screen_.pboek_uitvoer_exit(); });
    buttons->addStretch(1);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    setFocusProxy(vak_grid_);
    refresh();
}

void ExportWidget::refresh() {
    vak_ops_->setText(screen_.vak_ops());
    dir_disp_->setText(screen_.data_folder());
    vak_grid_->setVisible(screen_.series_list_shown());
    if (screen_.task_list_shown() && msflexgrid2_->rowCount() == 0) {
        show_text_grid(msflexgrid2_, screen_.tasks());
        msflexgrid2_->setColumnHidden(0, false);
    }
    msflexgrid2_->setVisible(screen_.task_list_shown());
}

}  // namespace veldo
