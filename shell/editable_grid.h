#pragma once
// What an input screen shows in its marks grid: a row per learner, a column
// per field, headings, and the one handler that judges an edited cell. The
// grid widget reads and edits through this and decides nothing itself.

#include <QString>

namespace veldo {

class EditableGrid {
public:
    virtual ~EditableGrid() = default;
    virtual int learner_count() const = 0;
    virtual int column_count() const = 0;
    virtual QString heading(int column) const = 0;
    // The stored text of a cell.
    virtual QString cell(int row, int column) = 0;
    virtual bool column_takes_marks(int column) const = 0;
    // The column the cursor lands on when it enters `column` coming from
    // `from`.
    virtual int column_entered(int column, int from) const = 0;
    // A cell left with a changed value; false when refused or not written
    // (the screen has said why): the grid keeps the old value.
    virtual bool cell_changed(int row, int column, const QString& typed) = 0;
    // Any key or click on the screen.
    virtual void activity() = 0;
};

}  // namespace veldo
