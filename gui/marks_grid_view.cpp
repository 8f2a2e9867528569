#include "gui/marks_grid_view.h"

#include <QHeaderView>
#include <QScrollBar>

namespace veldo {

MarksGridView::MarksGridView(int frozen_columns, QWidget* parent)
    : QTableView(parent), frozen_columns_(frozen_columns), frozen_(new QTableView(this)) {
    frozen_->setObjectName("frozen_columns");
    frozen_->setFocusPolicy(Qt::NoFocus);
    frozen_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    frozen_->verticalHeader()->hide();
    frozen_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    frozen_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    frozen_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    frozen_->setHorizontalScrollMode(ScrollPerPixel);
    frozen_->setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    frozen_->setStyleSheet("QTableView { border: none; }");
    viewport()->stackUnder(frozen_);

    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column, int, int size) {
        if (column < frozen_columns_) {
            frozen_->setColumnWidth(column, size);
            place_frozen();
        }
    });
    connect(verticalHeader(), &QHeaderView::sectionResized, this,
            [this](int row, int, int size) { frozen_->setRowHeight(row, size); });
    connect(verticalScrollBar(), &QAbstractSlider::valueChanged, frozen_->verticalScrollBar(),
            &QAbstractSlider::setValue);
    connect(frozen_->verticalScrollBar(), &QAbstractSlider::valueChanged, verticalScrollBar(),
            &QAbstractSlider::setValue);
}

void MarksGridView::setModel(QAbstractItemModel* model) {
    QTableView::setModel(model);
    frozen_->setModel(model);
    frozen_->setSelectionModel(selectionModel());
    frozen_->setSelectionMode(selectionMode());
    if (model) connect(model, &QAbstractItemModel::modelReset, this, &MarksGridView::refresh_frozen);
    refresh_frozen();
}

void MarksGridView::refresh_frozen() {
    if (!model()) return;
    frozen_->verticalHeader()->setDefaultSectionSize(verticalHeader()->defaultSectionSize());
    frozen_->horizontalHeader()->setMinimumHeight(horizontalHeader()->minimumHeight());
    for (int c = 0; c < model()->columnCount(); ++c) {
        const bool frozen = c < frozen_columns_;
        frozen_->setColumnHidden(c, !frozen || isColumnHidden(c));
        if (frozen) frozen_->setColumnWidth(c, columnWidth(c));
    }
    place_frozen();
}

int MarksGridView::frozen_width() const {
    int width = 0;
    for (int c = 0; c < frozen_columns_ && model() && c < model()->columnCount(); ++c)
        if (!isColumnHidden(c)) width += columnWidth(c);
    return width;
}

void MarksGridView::place_frozen() {
    frozen_->setGeometry(verticalHeader()->width() + frameWidth(), frameWidth(), frozen_width(),
                         viewport()->height() + horizontalHeader()->height());
    frozen_->verticalScrollBar()->setValue(verticalScrollBar()->value());
    frozen_->setVisible(frozen_columns_ > 0);
}

void MarksGridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    place_frozen();
}

void MarksGridView::updateGeometries() {
    QTableView::updateGeometries();
    place_frozen();
}

// The move lands on its column at once, so that the selection follows it
// (scrollTo keeps the cell clear of the frozen columns).
QModelIndex MarksGridView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const QModelIndex current = QTableView::moveCursor(action, modifiers);
    const int from = currentIndex().column();
    if (!landing_ || !current.isValid() || current.column() == from) return current;
    return model()->index(current.row(), landing_(current.column(), from));
}

// A cell never hides under the frozen columns.
void MarksGridView::scrollTo(const QModelIndex& index, ScrollHint hint) {
    if (index.column() >= frozen_columns_) {
        QTableView::scrollTo(index, hint);
        const QRect cell = visualRect(index);
        if (cell.left() < frozen_width())
            horizontalScrollBar()->setValue(horizontalScrollBar()->value() - (frozen_width() - cell.left()));
        return;
    }
    // Only the rows move for a frozen cell.
    const int across = horizontalScrollBar()->value();
    QTableView::scrollTo(index, hint);
    horizontalScrollBar()->setValue(across);
}

// The keyboard stays in the grid when the closing editor held it. Qt gives it
// back only while the window is the active one; the window's own focus is
// what keys reach, active or not. Tab opens the next cell's editor, which
// keeps the keys.
void MarksGridView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    QWidget* keys = window()->focusWidget();
    const bool held = keys && (keys == editor || editor->isAncestorOf(keys));
    QTableView::closeEditor(editor, hint);
    if (held && !editing()) setFocus();
}

}  // namespace veldo
