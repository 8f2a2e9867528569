#include "gui/mark_book_print_widget.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "markbook/mark_book_print_screen.h"

namespace veldo {

MarkBookPrintWidget::MarkBookPrintWidget(MarkBookPrintScreen& screen, QWidget* parent)
    : QWidget(parent), screen_(screen) {
    setObjectName("pboek_druk");
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, QColor(0xF4, 0xEE, 0xE2));
    setPalette(pal);
    resize(760, 480);
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(screen_.caption(), this);
    QFont f = title->font();
    f.setPointSize(15);
    f.setBold(true);
    title->setFont(f);
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);
    vak_ops_ = new QLabel(screen_.vak_ops(), this);
    vak_ops_->setObjectName("vak_ops");
    vak_ops_->setAlignment(Qt::AlignCenter);
    layout->addWidget(vak_ops_);

    vak_grid_ = new QTableWidget(this);
    vak_grid_->setObjectName("vak_grid");
    vak_grid_->setColumnCount(9);
    vak_grid_->horizontalHeader()->setVisible(false);
    vak_grid_->verticalHeader()->setVisible(false);
    vak_grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    vak_grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    const auto& rows = screen_.series();
    vak_grid_->setRowCount(int(rows.size()));
    for (int r = 0; r < rows.size(); ++r)
        for (int c = 0; c < 9; ++c) vak_grid_->setItem(r, c, new QTableWidgetItem(rows[r].value(c).trimmed()));
    vak_grid_->resizeColumnsToContents();
    auto open = [this](int row, int) {
        if (screen_.open_print_series(row)) vak_ops_->setText(screen_.vak_ops());
    };
    connect(vak_grid_, &QTableWidget::cellClicked, this, open);
    connect(vak_grid_, &QTableWidget::cellActivated, this, open);
    layout->addWidget(vak_grid_, 1);

    auto* buttons = new QHBoxLayout;
    const QStringList captions = screen_.button_captions();
    auto* print = new QPushButton(captions.value(0), this);
    print->setObjectName("pboek_druk_print");
    connect(print, &QPushButton::clicked, this, [this] {
        screen_.pboek_druk_print();
        vak_ops_->setText(screen_.vak_ops());
    });
    auto* exit = new QPushButton(captions.value(1), this);
    exit->setObjectName("pboek_druk_exit");
    connect(exit, &QPushButton::clicked, this, [this] { screen_.pboek_druk_exit(); });
    buttons->addWidget(print);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
}

}  // namespace veldo
