#include "gui/mark_lists_widget.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "gui/screen_parts.h"
#include "input/mark_lists.h"

namespace veldo {

MarkListsWidget::MarkListsWidget(MarkLists& lists, QWidget* parent) : QWidget(parent), lists_(lists) {
    setObjectName("punte_druk");
    setWindowTitle(lists_.caption());
    paint_form(this);
    resize(640, 560);
    auto* layout = new QVBoxLayout(this);
    auto* school = new QLabel(lists_.caption(), this);
    school->setAlignment(Qt::AlignCenter);
    layout->addWidget(school);
    vak_ops_ = screen_title(lists_.vak_ops(), this);
    vak_ops_->setObjectName("vak_ops");
    layout->addWidget(vak_ops_);
    auto* folder = new QLabel(lists_.data_folder(), this);
    folder->setObjectName("dir_disp");
    folder->setAlignment(Qt::AlignCenter);
    layout->addWidget(folder);

    subject_list_ = new QTableWidget(int(lists_.series().size()), 2, this);
    subject_list_->setObjectName("subject_list");
    subject_list_->horizontalHeader()->hide();
    subject_list_->verticalHeader()->hide();
    subject_list_->setSelectionBehavior(QAbstractItemView::SelectRows);
    subject_list_->setSelectionMode(QAbstractItemView::SingleSelection);
    subject_list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    QFont fixed("Courier New");
    fixed.setStyleHint(QFont::Monospace);
    subject_list_->setFont(fixed);
    for (int r = 0; r < lists_.series().size(); ++r) {
        subject_list_->setItem(r, 0, new QTableWidgetItem(lists_.series()[r].text));
        auto* total = new QTableWidgetItem(lists_.series()[r].total);
        total->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        subject_list_->setItem(r, 1, total);
    }
    subject_list_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    if (subject_list_->rowCount() > 0) subject_list_->setCurrentCell(0, 0);
    connect(subject_list_, &QTableWidget::cellDoubleClicked, this, [this](int row, int) { select(row); });
    subject_list_->installEventFilter(this);
    layout->addWidget(subject_list_, 1);

    const QStringList captions = lists_.captions();
    const QStringList orders = lists_.order_captions();
    auto* options = new QGridLayout;
    options->addWidget(new QLabel(captions.value(0), this), 0, 0);
    druk_tot_ = new QLineEdit(this);
    druk_tot_->setObjectName("druk_tot");
    druk_tot_->setMaximumWidth(90);
    connect(druk_tot_, &QLineEdit::textEdited, this, [this](const QString& text) { lists_.set_print_total(text); });
    connect(druk_tot_, &QLineEdit::returnPressed, this, [this] { print_->setFocus(); });
    options->addWidget(druk_tot_, 0, 1);
    options->addWidget(new QLabel(captions.value(1), this), 1, 0);
    alphabetic_ = new QRadioButton(orders.value(0), this);
    alphabetic_->setObjectName("opsie_an0");
    alphabetic_->setChecked(true);
    rank_ = new QRadioButton(orders.value(1), this);
    rank_->setObjectName("opsie_an1");
    connect(rank_, &QRadioButton::toggled, this, [this](bool on) { lists_.set_rank_order(on); });
    options->addWidget(alphabetic_, 1, 1);
    options->addWidget(rank_, 1, 2);
    options->setColumnStretch(3, 1);
    layout->addLayout(options);

    const QStringList buttons = lists_.button_captions();
    auto* row = new QHBoxLayout;
    print_ = new QPushButton(buttons.value(0), this);
    print_->setObjectName("punte_druk_print");
    connect(print_, &QPushButton::clicked, this, [this] {
        lists_.punte_druk_print();
        subject_list_->setFocus();
    });
    auto* exit = new QPushButton(buttons.value(1), this);
    exit->setObjectName("punte_druk_exit");
    connect(exit, &QPushButton::clicked, this, [this] { lists_.punte_druk_exit(); });
    row->addStretch(1);
    row->addWidget(print_);
    row->addWidget(exit);
    layout->addLayout(row);
    setFocusProxy(subject_list_);
    refresh();
}

void MarkListsWidget::refresh() {
    vak_ops_->setText(lists_.vak_ops());
    druk_tot_->setText(lists_.print_total());
    print_->setEnabled(lists_.print_enabled());
}

void MarkListsWidget::select(int row) {
    if (!lists_.select_series(row)) return;
    refresh();
    druk_tot_->setFocus();
    druk_tot_->selectAll();
}

bool MarkListsWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == subject_list_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && subject_list_->currentRow() >= 0) {
            select(subject_list_->currentRow());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace veldo
