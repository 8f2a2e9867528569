#include "markbook/move_learners.h"

#include <QRegularExpression>

#include "markbook/marks_table.h"
#include "store/dbf_open.h"
#include "store/dbf_table.h"
#include "store/record_store.h"
#include "store/series.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/text_helpers.h"
#include "util/user_dialogs.h"

namespace veldo {

QStringList learner_groups(RecordStore& store) {
    QStringList groups;
    for (const QStringList& row : series_rows(store)) {
        QString group = row.value(3).trimmed();
        if (group.isEmpty()) group = row.value(5).trimmed();
        if (!group.isEmpty()) groups << group;
    }
    return groups;
}

MoveLearners::MoveLearners(RecordStore& store, UserDialogs& dialogs) : store_(store), dialogs_(dialogs) {}

bool MoveLearners::check(const QString& from, const QString& to) {
    RunState& run = store_.run();
    // A list box finds an entry whatever the case it is typed in.
    const qsizetype from_at = groups_.indexOf(QRegularExpression(
        "^" + QRegularExpression::escape(from) + "$", QRegularExpression::CaseInsensitiveOption));
    const qsizetype to_at = groups_.indexOf(QRegularExpression(
        "^" + QRegularExpression::escape(to) + "$", QRegularExpression::CaseInsensitiveOption));
    QString refusal;
    if (from.trimmed().compare(to.trimmed(), Qt::CaseInsensitive) == 0)
        refusal = run.tr("'VAN' en 'NA' GROEPE MOET VERSKIL ...", "'FROM' and 'TO' GROUPS MUST DIFFER ...");
    else if (from_at < 0)
        refusal = run.tr("'VAN' GROEP ONGELDIG ...", "'FROM' GROUP INVALID ...");
    else if (to_at < 0)
        refusal = run.tr("'NA' GROEP ONGELDIG ...", "'TO' GROUP INVALID ...");
    if (!refusal.isEmpty()) {
        dialogs_.beep();
        dialogs_.message(refusal, MsgIcon::Exclamation);
        return false;
    }
    from_ = groups_[from_at];
    to_ = groups_[to_at];
    from_series_ = int(from_at) + 1;
    to_series_ = int(to_at) + 1;
    fill_learners();
    return true;
}

bool MoveLearners::set_groups(const QString& from, const QString& to) {
    groups_ = learner_groups(store_);
    return check(from, to);
}

bool MoveLearners::choose_groups() {
    RunState& run = store_.run();
    groups_ = learner_groups(store_);
    const QString prompt = groups_.join(", ");
    for (;;) {
        const QString from = dialogs_.input(prompt, run.tr("SKUIF LEERDER UIT GROEP ...", "MOVE LEARNER FROM GROUP ..."));
        if (from.trimmed().isEmpty()) return false;
        const QString to = dialogs_.input(prompt, run.tr("SKUIF LEERDER NA GROEP ...", "MOVE LEARNER TO GROUP ..."));
        if (to.trimmed().isEmpty()) return false;
        if (check(from, to)) return true;
    }
}

void MoveLearners::fill_learners() {
    learners_.clear();
    const QString path = find_group_table(store_.run().data_folder, "marks", from_series_);
    auto table = path.isEmpty() ? nullptr : DbfTable::open(path, nullptr, DbfAccess::ReadOnly);
    if (!table) return;
    for (table->MoveFirst(); !table->Eof(); table->MoveNext())
        learners_ << plain_text(table->value(0)).trimmed() + " " + toets_null_text(table->value(1));
}

namespace {

// The fields of the record at `position`, by index; empty past the end.
QList<QVariant> row_at(DbfTable& table, int position) {
    QList<QVariant> values;
    table.MoveFirst();
    table.Move(position);
    if (table.Eof()) return values;
    for (int f = 0; f < table.field_count(); ++f) values << table.value(f);
    return values;
}

}  // namespace

bool MoveLearners::move_learner(int position) {
    RunState& run = store_.run();
    if (position < 0 || position >= learners_.size()) return false;
    const QString question =
        run.tr("WIL U DEFNITIEF " + learners_[position] + "\r\nVAN GROEP " + from_ + " NA GROEP " + to_ + " SKUIF ?",
               "DO YOU REALY WISH TO MOVE " + learners_[position] + "\r\nFROM GROUP " + from_ + " TO GROUP " + to_ + " ?");
    if (dialogs_.message(question, MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes) return false;

    const QString folder = run.data_folder;
    const QString from_marks = find_group_table(folder, "marks", from_series_);
    if (from_marks.isEmpty()) {
        dialogs_.message(run.tr("Sien 'PUNTEBOEK OPSTEL' om punteboek vir VAN-GROEP te skep",
                                "See 'MARK BOOK SETUP' to create FROM GROUP mark book"),
                         MsgIcon::Exclamation);
        return false;
    }
    const QString to_marks = find_group_table(folder, "marks", to_series_);
    if (to_marks.isEmpty()) {
        dialogs_.message(run.tr("Sien 'PUNTEBOEK OPSTEL' om punteboek vir NA-GROEP te skep",
                                "See 'MARK BOOK SETUP' to create TO GROUP mark book"),
                         MsgIcon::Exclamation);
        return false;
    }

    DbfError error;
    auto fail = [&](const DbfError& e) {
        dialogs_.message(dbf_error_message(e, run.language_afrikaans), MsgIcon::Critical);
        return false;
    };
    struct Pair {
        std::unique_ptr<DbfTable> from, to;
    };
    Pair marks, list;
    marks.from = open_table_to_write(run, from_marks, &error);
    if (!marks.from) return fail(error);
    marks.to = open_table_to_write(run, to_marks, &error);
    if (!marks.to) return fail(error);
    const QString from_list = find_group_table(folder, "punte", from_series_);
    const QString to_list = find_group_table(folder, "punte", to_series_);
    if (from_list.isEmpty()) return fail({DbfError::Missing, QString("%1/punte%2.dbf").arg(folder).arg(from_series_), {}});
    if (to_list.isEmpty()) return fail({DbfError::Missing, QString("%1/punte%2.dbf").arg(folder).arg(to_series_), {}});
    list.from = open_table_to_write(run, from_list, &error);
    if (!list.from) return fail(error);
    list.to = open_table_to_write(run, to_list, &error);
    if (!list.to) return fail(error);

    // The learner's class-list row is found by the learner's number: the
    // marks table is kept in name order, the class list need not be, so the
    // same position could be another learner.
    const QList<QVariant> marks_row = row_at(*marks.from, position);
    if (marks_row.isEmpty()) return fail({DbfError::NoCurrentRecord, from_marks, {}});
    const double number = Val(plain_text(marks_row[0]));
    int list_position = -1;
    int at = 0;
    for (list.from->MoveFirst(); !list.from->Eof(); list.from->MoveNext(), ++at)
        if (Val(plain_text(list.from->value(0))) == number) {
            list_position = at;
            break;
        }
    const QList<QVariant> list_row = list_position < 0 ? QList<QVariant>() : row_at(*list.from, list_position);

    // Added to the other group first ...
    auto add = [&](DbfTable& table, const QList<QVariant>& values) {
        if (values.isEmpty()) return true;
        if (!table.AddNew()) return false;
        for (int f = 0; f < values.size() && f < table.field_count(); ++f) table.set_value(f, values[f]);
        return table.Update(&error);
    };
    if (!add(*marks.to, marks_row)) return fail(error.code != DbfError::None ? error : marks.to->last_error());
    if (!add(*list.to, list_row)) return fail(error.code != DbfError::None ? error : list.to->last_error());
    // ... then taken from this one.
    for (const auto& [table, at] : {std::pair{marks.from.get(), position}, std::pair{list.from.get(), list_position}}) {
        if (at < 0) continue;
        table->MoveFirst();
        table->Move(at);
        if (!table->Eof() && !table->Delete()) return fail(table->last_error());
    }
    learners_.removeAt(position);
    return true;
}

}  // namespace veldo
