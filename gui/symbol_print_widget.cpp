#include "gui/symbol_print_widget.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "exchange/symbol_screen.h"
#include "gui/screen_parts.h"

namespace veldo {

SymbolPrintWidget::SymbolPrintWidget(SymbolPrintScreen& screen, QWidget* parent)
    : QWidget(parent), screen_(screen) {
    setObjectName("simbole_druk");
    paint_form(this);
    resize(900, 640);
    auto* layout = new QVBoxLayout(this);
    add_screen_head(layout, this, screen_.school(), screen_.caption(), screen_.data_folder());

    vak_grid_ = veldo::series_list(screen_.series(), this);
    // 300 twips a row: the list shows up to 17 series before it scrolls.
    vak_grid_->verticalHeader()->setMinimumSectionSize(20);
    vak_grid_->verticalHeader()->setDefaultSectionSize(20);
    vak_grid_->setFixedHeight(screen_.series_list_height() / 15 + 2 * vak_grid_->frameWidth());
    connect(vak_grid_, &QTableWidget::cellClicked, this, [this](int row, int) { choose(row); });
    connect(vak_grid_, &QTableWidget::cellActivated, this, [this](int row, int) { choose(row); });
    layout->addWidget(vak_grid_);

    vak_ops_ = screen_title(screen_.vak_ops(), this);
    vak_ops_->setObjectName("vak_ops");
    layout->addWidget(vak_ops_);
    pnt_grid_ = new QTableWidget(this);
    pnt_grid_->setObjectName("pnt_grid");
    pnt_grid_->verticalHeader()->hide();
    pnt_grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    QFont fixed("Lucida Console");
    fixed.setStyleHint(QFont::Monospace);
    pnt_grid_->setFont(fixed);
    layout->addWidget(pnt_grid_, 1);

    const QStringList captions = screen_.button_captions();
    auto* buttons = new QHBoxLayout;
    auto* print = new QPushButton(captions.value(0), this);
    print->setObjectName("pboek_druk_print");
    connect(print, &QPushButton::clicked, this, [this] { screen_.pboek_druk_print(); });
    auto* exit = new QPushButton(captions.value(1), this);
    exit->setObjectName("pboek_druk_exit");
    connect(exit, &QPushButton::clicked, this, [this] { screen_.pboek_druk_exit(); });
    buttons->addStretch(1);
    buttons->addWidget(print);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    setFocusProxy(vak_grid_);
}

void SymbolPrintWidget::choose(int row) {
    if (!screen_.choose_series(row)) return;
    vak_ops_->setText(screen_.vak_ops());
    show_text_grid(pnt_grid_, screen_.grid());
}

}  // namespace veldo
