#include "gui/mark_book_print_widget.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "gui/screen_parts.h"
#include "markbook/mark_book_print_screen.h"

namespace veldo {

MarkBookPrintWidget::MarkBookPrintWidget(MarkBookPrintScreen& screen, QWidget* parent)
    : QWidget(parent), screen_(screen) {
    setObjectName("pboek_druk");
    paint_form(this);
    resize(760, 480);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(screen_title(screen_.caption(), this));
    vak_ops_ = new QLabel(screen_.vak_ops(), this);
    vak_ops_->setObjectName("vak_ops");
    vak_ops_->setAlignment(Qt::AlignCenter);
    layout->addWidget(vak_ops_);

    vak_grid_ = veldo::series_list(screen_.series(), this);
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
