#include "gui/marks_grid_model.h"

#include <QColor>
#include <QScopedValueRollback>

#include "shell/editable_grid.h"

namespace veldo {

MarksGridModel::MarksGridModel(EditableGrid& input, QObject* parent) : QAbstractTableModel(parent), input_(input) {}

int MarksGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : input_.learner_count();
}

int MarksGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : input_.column_count();
}

QVariant MarksGridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    if (role == Qt::DisplayRole || role == Qt::EditRole) return input_.cell(index.row(), index.column()).trimmed();
    if (role == Qt::TextAlignmentRole && index.column() >= 2) return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::BackgroundRole && index.column() >= 2 && !input_.column_takes_marks(index.column()))
        return QColor(0xFF, 0xFF, 0xC0);  // totals: worked out, not typed
    return {};
}

QVariant MarksGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Horizontal) return input_.heading(section);
    return section + 1;
}

Qt::ItemFlags MarksGridModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (index.isValid() && input_.column_takes_marks(index.column())) f |= Qt::ItemIsEditable;
    return f;
}

bool MarksGridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || !index.isValid()) return false;
    const QString typed = value.toString();
    if (typed.trimmed() == input_.cell(index.row(), index.column()).trimmed()) return true;  // left unchanged
    if (judging_) return false;
    bool accepted;
    {
        const QScopedValueRollback<bool> busy(judging_, true);
        accepted = input_.cell_changed(index.row(), index.column(), typed);
    }
    if (!accepted) {
        emit refused(index);
        return false;
    }
    // The running figure of another column of the row moved too.
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount() - 1));
    return true;
}

void MarksGridModel::reload() {
    beginResetModel();
    endResetModel();
}

}  // namespace veldo
