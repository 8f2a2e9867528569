#include "gui/screen_parts.h"

#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>

namespace veldo {

void paint_form(QWidget* form) {
    form->setAutoFillBackground(true);
    QPalette pal = form->palette();
    pal.setColor(QPalette::Window, QColor(0xF4, 0xEE, 0xE2));
    form->setPalette(pal);
}

QLabel* screen_title(const QString& text, QWidget* parent) {
    auto* title = new QLabel(text, parent);
    QFont f = title->font();
    f.setPointSize(15);
    f.setBold(true);
    title->setFont(f);
    title->setAlignment(Qt::AlignCenter);
    return title;
}

QTableWidget* series_list(const QList<QStringList>& rows, QWidget* parent) {
    auto* grid = new QTableWidget(parent);
    grid->setObjectName("vak_grid");
    grid->setColumnCount(9);
    grid->horizontalHeader()->setVisible(false);
    grid->verticalHeader()->setVisible(false);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setRowCount(int(rows.size()));
    for (int r = 0; r < rows.size(); ++r)
        for (int c = 0; c < 9; ++c) grid->setItem(r, c, new QTableWidgetItem(rows[r].value(c).trimmed()));
    grid->resizeColumnsToContents();
    if (!rows.isEmpty()) grid->setCurrentCell(0, 0);
    return grid;
}

}  // namespace veldo
