#include "gui/screen_parts.h"

#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include "util/text_grid.h"

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

QLabel* add_screen_head(QVBoxLayout* layout, QWidget* form, const QString& school, const QString& caption,
                        const QString& folder) {
    auto* school_label = new QLabel(school, form);
    school_label->setObjectName("ops_ops1");
    school_label->setAlignment(Qt::AlignCenter);
    layout->addWidget(school_label);
    layout->addWidget(screen_title(caption, form));
    auto* dir_disp = new QLabel(folder, form);
    dir_disp->setObjectName("dir_disp");
    dir_disp->setAlignment(Qt::AlignCenter);
    layout->addWidget(dir_disp);
    return dir_disp;
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

void show_text_grid(QTableWidget* table, const TextGrid& grid) {
    const int heading_rows = grid.fixed_rows() > 0 ? 1 : 0;
    table->clear();
    table->setColumnCount(grid.cols());
    table->setRowCount(std::max(0, grid.rows() - heading_rows));
    table->horizontalHeader()->setVisible(heading_rows > 0);
    for (int c = 0; c < grid.cols(); ++c) {
        const GridAlign align = grid.column_alignment(c);
        const Qt::Alignment a = (align == GridAlign::Right    ? Qt::AlignRight
                                 : align == GridAlign::Centre ? Qt::AlignHCenter
                                                              : Qt::AlignLeft) |
                                Qt::AlignVCenter;
        if (heading_rows > 0) {
            auto* heading = new QTableWidgetItem(grid.text(0, c).trimmed());
            heading->setTextAlignment(a);
            table->setHorizontalHeaderItem(c, heading);
        }
        for (int r = heading_rows; r < grid.rows(); ++r) {
            auto* item = new QTableWidgetItem(grid.text(r, c));
            item->setTextAlignment(a);
            if (grid.cell_has_own_colours(r, c)) {
                const int bgr = grid.cell_back_colour(r, c);
                item->setBackground(QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF));
            }
            table->setItem(r - heading_rows, c, item);
        }
    }
    table->resizeColumnsToContents();
    for (int c = 0; c < grid.cols(); ++c) {
        const int twips = grid.col_width(c);
        table->setColumnHidden(c, twips == 0);
        if (twips > 0) table->setColumnWidth(c, std::max(table->columnWidth(c), twips / 15));
    }
}

}  // namespace veldo
