#include "markbook/column_actions.h"

#include <QRegularExpression>
#include <algorithm>

#include "store/dbf_table.h"
#include "store/run_state.h"
#include "util/legacy_number.h"
#include "util/text_helpers.h"

namespace veldo {

QString scaling_total_column_message(const RunState& run) {
    return run.tr("Verskalings nie moontlik op totaalkolomme nie ...", "Scaling not possible on total columns ...");
}

QString scaling_prompt(const RunState& run, double current) {
    return run.tr("Huidige gemiddeld ", "Current average ") + plain_number_text(current) + "\r\n\r\n" +
           run.tr("Nuwe gemiddeld ...", "New average ...");
}

namespace {

// A field that holds a mark to work on: not "A", "a", blank or Null.
bool holds_mark(const QString& stored) {
    const QString t = stored.trimmed();
    return !t.isEmpty() && t != "A" && t != "a";
}

// Walks the whole table in one batch: `change` returns the new text of the
// field for the current record, or a null text to leave it.
template <typename Change>
bool rewrite_column(DbfTable& marks, int column, Change change) {
    if (column < 0 || column >= marks.field_count()) return false;
    if (!marks.begin_batch()) return false;
    int row = 0;
    for (marks.MoveFirst(); !marks.Eof(); marks.MoveNext(), ++row) {
        const QString next = change(row);
        if (next.isNull()) continue;
        if (!marks.Edit()) return false;
        marks.set_value(column, next);
        if (!marks.Update()) return false;
    }
    const bool written = marks.commit_batch();
    marks.MoveFirst();
    return written;
}

}  // namespace

bool scale_column(DbfTable& marks, const ColumnLists& lists, int column, double current, double wanted) {
    const double total = lists.total(column);
    if (total == 0) return true;
    return rewrite_column(marks, column, [&](int) {
        const QString stored = toets_null_text(marks.value(column));
        if (!holds_mark(stored)) return QString();
        const double p = (Val(stored) / total) * 100;
        double q = (p - current) + wanted;
        q = std::min(std::max(q, 0.0), 100.0);
        return format_one_decimal((q * total) / 100);
    });
}

QString copy_column_question(const RunState& run, const QString& from, const QString& to) {
    return run.tr("WIL U DEFNITIEF PUNTE VANAF \r\n" + from + " KOPIEER NA " + to + " ?",
                  "DO YOU WISH TO COPY MARK BOOK SETUP FOR " + from + " TO " + to + " ?");
}

bool copy_column(DbfTable& marks, int from, int to) {
    if (from < 0 || from >= marks.field_count()) return false;
    return rewrite_column(marks, to, [&](int) { return toets_null_text(marks.value(from)); });
}

QString paste_no_column_message(const RunState& run) {
    return run.tr("Kies eers puntkolom waarin punte kopieer moet word !",
                  "First select marks column into which marks must be pasted !");
}

QString paste_warning(const RunState& run) {
    const QStringList af = {"Hierdie funksie sal blindweg enige inligting wat in die Windows 'clipboard' is",
                            "as punte in die puntelêer 'paste'. Dit is UITERS belangrik dat",
                            "u seker maak dat u nie hierdie funksie doen as die data in die 'clipboard' nie",
                            "in PRESIES dieselfde volgorde as die leerders op die skerm is.",
                            "Hierdie funksie het geen validasie nie en sal alle punte op die",
                            "matriks OORSKRYF (oorweeg LEERDERVOLGORDE en VAKTOTAAL)",
                            "",
                            "WIL U DEFNITIEF VOORTGAAN ?"};
    const QStringList en = {"This function will indiscriminately paste any information from",
                            "the Windows clipboard as marks in the marks file. It is of extreme",
                            "importance not to execute this function if the data in the clipboard",
                            "is not in EXACTLY the same sequence as the learners on the screen.",
                            "This function contains no validation and will overwrite any marks on",
                            "the marks file (consider LEARNER SEQUENCE and SUBJECT TOTAL)",
                            "",
                            "DO YOU REALY WANT TO CONTINUE ?"};
    return (run.language_afrikaans ? af : en).join("\r\n");
}

bool paste_column(DbfTable& marks, int column, const QString& text) {
    // One line per learner; a tab ends the cell, as in a one-column grid.
    QStringList lines = text.split(QRegularExpression("\r\n|\r|\n"));
    if (text.endsWith('\n') || text.endsWith('\r')) lines.removeLast();
    return rewrite_column(marks, column, [&](int row) {
        const double number = Val(lines.value(row).section('\t', 0, 0));
        return number < 0 ? QString() : format_one_decimal(number);
    });
}

TextGrid merit_list(DbfTable& marks, int column) {
    TextGrid grid(0, 3);
    grid.set_fixed_rows(0);
    grid.set_fixed_cols(0);
    if (column < 0 || column >= marks.field_count()) return grid;
    for (marks.MoveFirst(); !marks.Eof(); marks.MoveNext()) {
        const int r = grid.rows();
        grid.set_rows(r + 1);
        grid.set_text(r, 0, toets_null_text(marks.value(0)));
        grid.set_text(r, 1, toets_null_text(marks.value(1)));
        grid.set_text(r, 2, toets_null_text(marks.value(column)));
    }
    marks.MoveFirst();
    grid.sort(2, GridSort::NumericDescending);
    return grid;
}

}  // namespace veldo
