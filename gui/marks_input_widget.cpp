#include "gui/marks_input_widget.h"

#include <QAbstractItemDelegate>
#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "gui/marks_grid_model.h"
#include "gui/marks_grid_view.h"
#include "gui/screen_parts.h"
#include "input/marks_input.h"
#include "store/run_state.h"

namespace veldo {

namespace {

// The grid's widths are twips: 15 to a pixel on the family's screens.
constexpr int kTwipsPerPixel = 15;

QLabel* named_label(const QString& name, QWidget* parent) {
    auto* l = new QLabel(parent);
    l->setObjectName(name);
    return l;
}

}  // namespace

MarksInputWidget::MarksInputWidget(MarksInput& input, QWidget* parent)
    : QWidget(parent), input_(input), model_(new MarksGridModel(input, this)) {
    setObjectName("punte_inlees");
    paint_form(this);
    resize(900, 680);
    auto* layout = new QVBoxLayout(this);
    auto* school = named_label("ops_ops1", this);
    school->setText(input_.school_name());
    school->setAlignment(Qt::AlignCenter);
    layout->addWidget(school);
    vak_ops_ = screen_title(input_.caption(), this);
    vak_ops_->setObjectName("vak_ops");
    layout->addWidget(vak_ops_);
    auto* folder = named_label("dir_disp", this);
    folder->setText(input_.data_folder());
    folder->setAlignment(Qt::AlignCenter);
    layout->addWidget(folder);
    ops_totale_ = named_label("ops_totale", this);
    ops_totale_->setAlignment(Qt::AlignCenter);
    layout->addWidget(ops_totale_);

    vak_grid_ = veldo::series_list(input_.series(), this);
    connect(vak_grid_, &QTableWidget::cellClicked, this, [this](int row, int) { open_row(row); });
    vak_grid_->installEventFilter(this);
    layout->addWidget(vak_grid_, 1);

    grid_ = new MarksGridView(2, this);
    grid_->setObjectName("pnt_grid");
    grid_->setModel(model_);
    grid_->set_landing([this](int column, int from) { return input_.column_entered(column, from); });
    grid_->setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked |
                           QAbstractItemView::EditKeyPressed);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->verticalHeader()->setDefaultSectionSize(22);
    grid_->installEventFilter(this);
    connect(model_, &MarksGridModel::refused, this, [this](const QModelIndex& at) {
        refused_ = true;
        QTimer::singleShot(0, this, [this, at = QPersistentModelIndex(at)] {
            refused_ = false;
            if (at.isValid()) grid_->setCurrentIndex(at);
            grid_->setFocus();
        });
    });
    connect(grid_->itemDelegate(), &QAbstractItemDelegate::closeEditor, this,
            [this](QWidget*, QAbstractItemDelegate::EndEditHint hint) {
                if (hint != QAbstractItemDelegate::SubmitModelCache || refused_) return;
                move_on(grid_->currentIndex());
                total_->setText(input_.total_text());
                average_->setText(input_.average_text());
            });
    connect(grid_->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) {
        input_.heading_click(column);
        grid_->setFocus();
    });
    layout->addWidget(grid_, 1);

    progress_ = new QProgressBar(this);
    progress_->setObjectName("ProgressBar1");
    progress_->hide();
    layout->addWidget(progress_);
    // The sort's progress, while a series opens.
    input_.set_progress([this](int done, int count) {
        progress_->setMaximum(std::max(count, 1));
        progress_->setValue(done);
        progress_->setVisible(done < count);
    });

    auto* figures = new QHBoxLayout;
    const QStringList figure_captions = input_.figure_captions();
    figures->addStretch(1);
    figures->addWidget(new QLabel(figure_captions.value(0), this));
    total_ = named_label("punte_inlees_tot", this);
    total_->setMinimumWidth(90);
    total_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    total_->setFrameShape(QFrame::Panel);
    total_->setFrameShadow(QFrame::Sunken);
    figures->addWidget(total_);
    figures->addSpacing(16);
    figures->addWidget(new QLabel(figure_captions.value(1), this));
    average_ = new QPushButton(this);
    average_->setObjectName("punte_inlees_gem");
    average_->setMinimumWidth(90);
    average_->setToolTip(input_.average_tool_tip());
    connect(average_, &QPushButton::clicked, this, [this] {
        input_.scale_marks();
        reload_at(0, 2);
    });
    figures->addWidget(average_);
    layout->addLayout(figures);

    const QStringList captions = input_.button_captions();
    const QStringList tips = input_.tool_tips();
    auto* buttons = new QHBoxLayout;
    const QStringList names = {"marks_calculator", "marks_undo", "marks_save", "marks_print", "paste_into_flex",
                               "marks_exit"};
    for (int i = 0; i < names.size(); ++i) {
        auto* b = new QPushButton(captions.value(i), this);
        b->setObjectName(names[i]);
        if (!tips.value(i).isEmpty()) b->setToolTip(tips.value(i));
        buttons->addWidget(b);
        if (i >= 1 && i <= 4) series_buttons_ << b;
    }
    connect(button("marks_calculator"), &QPushButton::clicked, this, [this] {
        input_.marks_calculator();
        if (input_.series_open()) grid_->setFocus();
    });
    connect(button("marks_undo"), &QPushButton::clicked, this, [this] {
        input_.marks_undo();
        reload_at(0, 2);
    });
    connect(button("marks_save"), &QPushButton::clicked, this, [this] {
        input_.marks_save();
        refresh();
    });
    connect(button("marks_print"), &QPushButton::clicked, this, [this] {
        input_.marks_print();
        if (input_.series_open()) grid_->setFocus();
    });
    connect(button("paste_into_flex"), &QPushButton::clicked, this, [this] {
        input_.paste_into_flex();
        reload_at(0, 2);
    });
    connect(button("marks_exit"), &QPushButton::clicked, this, [this] {
        input_.marks_exit();
        refresh();
    });
    layout->addLayout(buttons);
    refresh();
}

QPushButton* MarksInputWidget::button(const QString& name) const { return findChild<QPushButton*>(name); }

QLabel* MarksInputWidget::label(const QString& name) const { return findChild<QLabel*>(name); }

void MarksInputWidget::refresh() {
    const bool open = input_.series_open();
    setFocusProxy(open ? static_cast<QWidget*>(grid_) : vak_grid_);
    vak_ops_->setText(input_.vak_ops());
    ops_totale_->setText(input_.ops_totale());
    total_->setText(input_.total_text());
    average_->setText(input_.average_text());
    average_->setEnabled(open);
    vak_grid_->setVisible(!open);
    grid_->setVisible(open);
    button("marks_save")->setEnabled(open && input_.save_enabled());
    button("marks_undo")->setEnabled(open);
    button("paste_into_flex")->setEnabled(open);
    button("marks_print")->setEnabled(input_.learner_count() > 0 || !open);
    model_->reload();
    if (!open) {
        vak_grid_->setFocus();
        return;
    }
    for (int c = 0; c < 4; ++c) grid_->setColumnWidth(c, QList<int>{1000, 6000, 1100, 800}[c] / kTwipsPerPixel);
    grid_->refresh_frozen();
}

void MarksInputWidget::open_row(int row) {
    const bool opened = input_.open_subject(row);
    progress_->hide();
    refresh();
    if (!opened) return;
    grid_->setCurrentIndex(model_->index(0, 2));
    grid_->setFocus();
}

void MarksInputWidget::reload_at(int row, int column) {
    refresh();
    if (!input_.series_open() || model_->rowCount() == 0) return;
    grid_->setCurrentIndex(model_->index(std::clamp(row, 0, model_->rowCount() - 1), column));
    grid_->setFocus();
}

void MarksInputWidget::move_on(const QModelIndex& from) {
    if (!from.isValid()) return;
    const auto [row, column] = input_.next_cell(from.row(), from.column());
    grid_->setCurrentIndex(model_->index(row, column));
}

bool MarksInputWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress) input_.activity();
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (watched == vak_grid_ && enter && vak_grid_->currentRow() >= 0) {
            open_row(vak_grid_->currentRow());
            return true;
        }
        if (watched == grid_ && enter) {
            if (grid_->editing()) return true;  // the editor hands its text in first
            move_on(grid_->currentIndex());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace veldo
