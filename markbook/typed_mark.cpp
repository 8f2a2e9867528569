#include "markbook/typed_mark.h"

#include "store/dbf_table.h"
#include "store/run_state.h"
#include "util/legacy_number.h"
#include "util/text_helpers.h"

namespace veldo {

QString mark_range_message(const RunState& run, const ColumnLists& lists, int column) {
    const QString total = lists.at(1, column);
    return run.tr("Punte kan slegs ' ', 'A', 'a' of 0-" + total + " wees", "Marks can only be ' ', 'A', 'a' or 0-" + total);
}

TypedMark store_typed_mark(RunState& run, DbfTable& marks, const ColumnLists& lists, int column,
                           const QString& typed) {
    const QString text = typed.trimmed();
    if (text == "A" || text == "a") {
        // Stored as typed; the running figure waits for the recalculation.
        if (!marks.Edit()) return TypedMark::Failed;
        marks.set_value(column, text);
        return marks.Update() ? TypedMark::Stored : TypedMark::Failed;
    }
    // An emptied cell passes as 0: its old mark leaves the running figure.
    const double mark = Val(text);
    if (mark < 0 || mark > lists.total(column)) {
        if (run.dialogs) {
            run.dialogs->beep();
            run.dialogs->message(mark_range_message(run, lists, column), MsgIcon::Exclamation);
        }
        return TypedMark::Refused;
    }
    const QString stored = text.isEmpty() ? QString() : format_one_decimal(mark);
    if (!marks.Edit()) return TypedMark::Failed;
    const double old = Val(toets_null_text(marks.value(column)));
    marks.set_value(column, stored.isEmpty() ? QVariant() : QVariant(stored));
    const int t = lists.target(column);
    if (t >= 2 && t < marks.field_count()) {
        // The old mark comes off as the field would hold the difference: a
        // number's text, cut at the field's width.
        QString figure = toets_null_text(marks.value(t));
        if (old > 0) figure = plain_number_text(Val(figure) - old).left(marks.field(t).width);
        marks.set_value(t, format_one_decimal(Val(figure) + Val(stored)));
    }
    return marks.Update() ? TypedMark::Stored : TypedMark::Failed;
}

}  // namespace veldo
