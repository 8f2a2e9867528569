#pragma once
// The marks grid's model: the open table of an input screen, a row per
// learner and a column per field. Cells are read through the screen and every
// edit goes back to the screen's handler, which judges it (and may beep and
// say why) and writes it through the table layer: the model never decides.

#include <QAbstractTableModel>

namespace veldo {

class EditableGrid;

class MarksGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit MarksGridModel(EditableGrid& input, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    // After the screen changed the table or opened another book.
    void reload();

signals:
    // An edit the screen refused: the cell keeps its value and the cursor
    // stays on it.
    void refused(const QModelIndex& index);

private:
    EditableGrid& input_;
    // The refusal's message box takes the focus from the editor, which
    // hands its text in once more while the box is up: that second time
    // is not judged again.
    bool judging_ = false;
};

}  // namespace veldo
