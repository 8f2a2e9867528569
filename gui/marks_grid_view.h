#pragma once
// A marks grid whose first columns (admission number and name) stay on the
// left while the marks scroll under them: a second view over the same model
// and selection lies on top of those columns and follows the rows.

#include <QTableView>

#include <functional>

namespace veldo {

class MarksGridView : public QTableView {
    Q_OBJECT
public:
    MarksGridView(int frozen_columns, QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    QTableView* frozen_view() const { return frozen_; }
    int frozen_columns() const { return frozen_columns_; }
    // A cell's editor is open.
    bool editing() const { return state() == EditingState; }
    // After the model reset or columns were shown or hidden.
    void refresh_frozen();
    // Where a keyboard move into `column` from `from` lands (past columns
    // that take no marks); unset, it lands where it was aimed.
    void set_landing(std::function<int(int column, int from)> landing) { landing_ = std::move(landing); }

protected:
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void resizeEvent(QResizeEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    void updateGeometries() override;

private:
    int frozen_width() const;
    void place_frozen();

    int frozen_columns_;
    QTableView* frozen_;
    std::function<int(int, int)> landing_;
};

}  // namespace veldo
