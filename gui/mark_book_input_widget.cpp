#include "gui/mark_book_input_widget.h"

#include <QAbstractItemDelegate>
#include <QApplication>
#include <utility>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "gui/marks_grid_model.h"
#include "gui/marks_grid_view.h"
#include "gui/screen_parts.h"
#include "markbook/mark_book_input.h"

namespace veldo {

MarkBookInputWidget::MarkBookInputWidget(MarkBookInput& input, QWidget* parent)
    : QWidget(parent), input_(input), model_(new MarksGridModel(input, this)) {
    setObjectName("pboek_inlees");
    paint_form(this);
    resize(1180, 700);
    const QStringList captions = input_.captions();

    auto* layout = new QVBoxLayout(this);
    title_ = screen_title(captions.value(0), this);
    layout->addWidget(title_);
    vak_info_ = new QLabel(this);
    vak_info_->setObjectName("vak_info");
    vak_info_->setAlignment(Qt::AlignCenter);
    layout->addWidget(vak_info_);

    vak_grid_ = veldo::series_list(input_.series(), this);
    connect(vak_grid_, &QTableWidget::cellClicked, this, [this](int row, int) { open_row(row); });
    connect(vak_grid_, &QTableWidget::cellActivated, this, [this](int row, int) { open_row(row); });
    vak_grid_->installEventFilter(this);
    layout->addWidget(vak_grid_, 1);

    grid_ = new MarksGridView(2, this);
    grid_->setObjectName("DBGrid1");
    grid_->setModel(model_);
    grid_->set_landing([this](int column, int from) { return input_.column_entered(column, from); });
    grid_->setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked |
                           QAbstractItemView::EditKeyPressed);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->horizontalHeader()->setDefaultSectionSize(64);
    grid_->horizontalHeader()->setMinimumHeight(64);
    grid_->verticalHeader()->setDefaultSectionSize(22);
    grid_->installEventFilter(this);
    // A refused mark: the message has been shown and the cell keeps its
    // value; the cursor goes back to it, whatever key or click ended the
    // edit, once the view has finished closing the editor.
    connect(model_, &MarksGridModel::refused, this, [this](const QModelIndex& at) {
        refused_ = true;
        QTimer::singleShot(0, this, [this, at = QPersistentModelIndex(at)] {
            refused_ = false;
            if (at.isValid()) grid_->setCurrentIndex(at);
            grid_->setFocus();
        });
    });
    // Return after typing a mark: the next learner in the same column.
    connect(grid_->itemDelegate(), &QAbstractItemDelegate::closeEditor, this,
            [this](QWidget*, QAbstractItemDelegate::EndEditHint hint) {
                if (hint != QAbstractItemDelegate::SubmitModelCache || refused_) return;
                const QModelIndex at = grid_->currentIndex();
                if (at.isValid() && at.row() + 1 < model_->rowCount())
                    grid_->setCurrentIndex(model_->index(at.row() + 1, at.column()));
            });
    connect(grid_->horizontalHeader(), &QHeaderView::sectionClicked, this, &MarkBookInputWidget::heading_clicked);
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this, &MarkBookInputWidget::column_moved);
    layout->addWidget(grid_, 1);

    progress_ = new QProgressBar(this);
    progress_->setObjectName("ProgressBar1");
    progress_->hide();
    layout->addWidget(progress_);

    kopieer_raam_ = new QFrame(this);
    kopieer_raam_->setObjectName("kopieer_raam");
    kopieer_raam_->setFrameShape(QFrame::StyledPanel);
    auto* copy_row = new QHBoxLayout(kopieer_raam_);
    for (int i = 0; i < 2; ++i) {
        kopieer_reeks_[i] = new QComboBox(kopieer_raam_);
        kopieer_reeks_[i]->setObjectName(QString("kopieer_reeks_%1").arg(i));
        copy_row->addWidget(kopieer_reeks_[i], 1);
    }
    auto* copy_ok = new QPushButton("OK", kopieer_raam_);
    copy_ok->setObjectName("copy_ok");
    copy_row->addWidget(copy_ok);
    connect(copy_ok, &QPushButton::clicked, this, [this] {
        const QModelIndex at = grid_->currentIndex();
        input_.copy_ok(kopieer_reeks_[0]->currentIndex(), kopieer_reeks_[1]->currentIndex());
        reload_at(at.row(), at.column());
    });
    kopieer_raam_->hide();
    layout->addWidget(kopieer_raam_);

    // skuif_raam: the learners of the from group; a click moves one.
    skuif_raam_ = new QFrame(this);
    skuif_raam_->setObjectName("skuif_raam");
    skuif_raam_->setFrameShape(QFrame::StyledPanel);
    auto* skuif = new QVBoxLayout(skuif_raam_);
    ppl_skuif_lys_ = new QListWidget(skuif_raam_);
    ppl_skuif_lys_->setObjectName("ppl_skuif_lys");
    skuif->addWidget(ppl_skuif_lys_);
    auto* skuif_close = new QPushButton("OK", skuif_raam_);
    skuif_close->setObjectName("skuif_ok");
    skuif->addWidget(skuif_close, 0, Qt::AlignRight);
    connect(ppl_skuif_lys_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        if (input_.skuif_click(ppl_skuif_lys_->row(item))) delete item;
    });
    connect(skuif_close, &QPushButton::clicked, this, [this] {
        input_.skuif_close();
        skuif_raam_->hide();
        vak_grid_->setFocus();
    });
    skuif_raam_->hide();
    layout->addWidget(skuif_raam_);

    auto* buttons = new QHBoxLayout;
    auto add = [&](const QString& name, const QString& caption, bool book_only, auto handler) {
        auto* b = new QPushButton(caption, this);
        b->setObjectName(name);
        connect(b, &QPushButton::clicked, this, [this, handler] {
            input_.activity();
            handler();
            refresh();
        });
        buttons->addWidget(b);
        if (book_only) book_buttons_ << b;
        return b;
    };
    add("pboek_inlees_calculator", captions.value(1), false, [this] {
        input_.pboek_inlees_calculator();
        grid_->setFocus();
    });
    add("pboek_inlees_undo", captions.value(2), true, [this] {
        const QModelIndex at = grid_->currentIndex();
        input_.pboek_inlees_undo();
        reload_at(at.row(), at.column());
    });
    add("pboek_inlees_totale", captions.value(3), true, [this] {
        progress_->show();
        input_.pboek_inlees_totale([this](int done, int count) {
            progress_->setMaximum(count);
            progress_->setValue(std::min(done, count));
        });
        progress_->hide();
    });
    add("pboek_inlees_print", captions.value(4), false, [this] { input_.pboek_inlees_print(); });
    add("marks_copy", captions.value(5), true, [this] { kopieer_raam_->show(); });
    add("marks_paste", captions.value(6), true, [this] {
        const QModelIndex at = grid_->currentIndex();
        input_.paste_into_flex(at.isValid() ? at.column() : 0);
        reload_at(at.row(), at.column());
    });
    skuif_leerders_ = add("skuif_leerders", input_.skuif_caption(), false, [this] {
        if (!input_.skuif_leerders()) return;
        ppl_skuif_lys_->clear();
        ppl_skuif_lys_->addItems(input_.skuif_list());
        skuif_raam_->show();
        ppl_skuif_lys_->setFocus();
    });
    skuif_leerders_->setToolTip(input_.skuif_tip());
    add("marks_exit", captions.value(8), false, [this] { input_.marks_exit(); });
    layout->addLayout(buttons);
    refresh();
}

QPushButton* MarkBookInputWidget::button(const QString& name) const { return findChild<QPushButton*>(name); }

void MarkBookInputWidget::refresh() {
    const bool open = input_.book_open();
    // Whoever gives the screen the keyboard gives it to the list or the grid.
    setFocusProxy(open ? static_cast<QWidget*>(grid_) : vak_grid_);
    vak_info_->setText(open ? input_.vak_info() : QString());
    vak_grid_->setVisible(!open);
    grid_->setVisible(open);
    for (QPushButton* b : book_buttons_) b->setEnabled(open);
    // Learners move between the groups' tables while no book holds them open.
    skuif_leerders_->setEnabled(!open);
    if (!open) {
        kopieer_raam_->hide();
        model_->reload();
        vak_grid_->setFocus();
        return;
    }
    // Each marks column is as wide as its heading (name, total, average).
    QHeaderView* headings = grid_->horizontalHeader();
    headings->setMinimumSectionSize(40);
    for (int c = 0; c < model_->columnCount(); ++c) {
        grid_->setColumnHidden(c, input_.column_hidden(c));
        if (c >= 2) grid_->setColumnWidth(c, std::max(64, headings->sectionSizeHint(c)));
    }
    grid_->setColumnWidth(1, 220);
    grid_->refresh_frozen();
    for (int i = 0; i < 2; ++i) {
        kopieer_reeks_[i]->clear();
        for (const auto& [name, field] : input_.book()->lists.kopieer_reeks) kopieer_reeks_[i]->addItem(name, field);
    }
}

void MarkBookInputWidget::open_row(int row) {
    input_.activity();
    if (!input_.vak_grid_click(row)) return;
    model_->reload();
    refresh();
    grid_->setCurrentIndex(model_->index(0, input_.column_entered(2, 1)));
    grid_->setFocus();
}

void MarkBookInputWidget::heading_clicked(int column) {
    if (!input_.heading_click(column)) return;
    QMenu kol_opsies(this);
    kol_opsies.setObjectName("kol_opsies");
    const QStringList choices = input_.column_choices();
    const QStringList help = input_.column_choice_help();
    for (int i = 0; i < choices.size(); ++i) {
        QAction* a = kol_opsies.addAction(choices[i]);
        a->setToolTip(help.value(i));
        a->setStatusTip(help.value(i));
        a->setData(i + 1);
    }
    kol_opsies.setToolTipsVisible(true);
    QAction* chosen = kol_opsies.exec(QCursor::pos());
    if (!chosen) return;
    input_.kol_opsie_click(chosen->data().toInt());
    // Scaling leaves the recordset on its first row, in the chosen column.
    reload_at(0, column);
}

void MarkBookInputWidget::reload_at(int row, int column) {
    model_->reload();
    refresh();
    if (!input_.book_open() || model_->rowCount() == 0) return;
    row = std::clamp(row, 0, model_->rowCount() - 1);
    column = input_.column_entered(std::max(column, 2), 1);
    grid_->setCurrentIndex(model_->index(row, column));
    grid_->setFocus();
}

// The keyboard's moves land through the grid's own cursor; a click on a
// learner or total column is set right once the click has been handled, so
// that the selection moves with the cursor.
void MarkBookInputWidget::column_moved(const QModelIndex& now, const QModelIndex& before) {
    if (!now.isValid()) return;
    const int from = before.isValid() ? before.column() : 2;
    const int lands = input_.column_entered(now.column(), from);
    if (lands == now.column()) return;
    QMetaObject::invokeMethod(
        this,
        [this, row = now.row(), column = now.column(), lands] {
            const QModelIndex at = grid_->currentIndex();
            if (at.row() == row && at.column() == column) grid_->setCurrentIndex(model_->index(row, lands));
        },
        Qt::QueuedConnection);
}

bool MarkBookInputWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress) input_.activity();
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (watched == vak_grid_ && enter && vak_grid_->currentRow() >= 0) {
            open_row(vak_grid_->currentRow());
            return true;
        }
        if (watched == grid_ && enter) {
            // Return while typing: the editor hands its text in and closes,
            // and the move comes after the mark was judged.
            if (grid_->editing()) return true;
            const QModelIndex at = grid_->currentIndex();
            if (at.isValid() && at.row() + 1 < model_->rowCount())
                grid_->setCurrentIndex(model_->index(at.row() + 1, at.column()));
            return true;
        }
        if (watched == grid_ && key->key() == Qt::Key_Escape) {
            input_.marks_exit();
            refresh();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace veldo
