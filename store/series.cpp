#include "store/series.h"

#include "store/record_store.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/text_grid.h"
#include "util/text_helpers.h"

namespace veldo {

const RecordLayout& series_record_layout() {
    static const RecordLayout layout{
        {"ec_grade", FieldKind::Text, 3},  {"ec_subject", FieldKind::Text, 5}, {"ec_total", FieldKind::Single},
        {"ec_class", FieldKind::Text, 3},  {"ec_class2", FieldKind::Text, 3},  {"ec_group", FieldKind::Text, 3},
        {"ec_number", FieldKind::Int16},   {"ec_code", FieldKind::Text, 5},    {"ec_date", FieldKind::Date},
        {"ec_spare", FieldKind::Text, 8}};
    return layout;
}

namespace {

// Walks every record of `E_C` in the data folder, then plain-closes the file
// as the forms do.
template <typename Visit>
void walk_series(RecordStore& store, Visit visit) {
    store.open_exp_mrk_control("E_C", store.run().data_folder);
    const TableVar ec = store.table("E_C");
    RecordBuffer rec(&series_record_layout());
    for (store.series_index = 1; store.series_index <= ec.record_count; ++store.series_index) {
        if (!store.read_record(ec.file_number, store.series_index, rec)) break;
        visit(rec);
    }
    store.plain_close(ec.file_number);
}

}  // namespace

QList<QStringList> series_rows(RecordStore& store) {
    QList<QStringList> rows;
    walk_series(store, [&](RecordBuffer& rec) {
        if (Val(rec.text("ec_grade")) > 9) rec.set_single("ec_total", 100.0f);
        rows.append({rec.text("ec_grade"), rec.text("ec_subject"),
                     plain_text(QVariant::fromValue(rec.single("ec_total"))), rec.text("ec_class"),
                     rec.text("ec_class2"), rec.text("ec_group"), QString::number(rec.int16("ec_number")),
                     rec.text("ec_code"), date_value_text(OleDate{rec.date("ec_date")})});
    });
    return rows;
}

void fill_series_grid(RecordStore& store, TextGrid& grid) {
    grid.clear();
    grid.set_fixed_rows(0);
    grid.set_fixed_cols(0);
    grid.set_cols(9);
    grid.set_rows(0);
    const auto rows = series_rows(store);
    grid.set_rows(int(rows.size()));
    for (int r = 0; r < rows.size(); ++r)
        for (int c = 0; c < 9; ++c) grid.set_text(r, c, rows[r][c]);
}

QString series_key(const QStringList& row) {
    auto column = [&](int c) { return c < row.size() ? row[c] : QString(); };
    QString class_part = column(3).trimmed();
    if (class_part.isEmpty()) class_part = column(5).trimmed();
    QString subject = column(1);
    subject.replace(' ', '_');
    QString key = (column(0) + subject + class_part).trimmed();
    key.replace('/', '_');
    return key;
}

QList<MarkListItem> mark_list_items(RecordStore& store) {
    QList<MarkListItem> items;
    walk_series(store, [&](RecordBuffer& rec) {
        const QString grade = right_justified(rec.text("ec_grade"), 3);
        const QString subject = left_justified(rec.text("ec_subject"), 5);
        // Group first, then class: the class part is stored back into the
        // three-character group field and cut there.
        const QString group = rec.text("ec_group");
        rec.set_text("ec_group", group.trimmed().isEmpty() ? rec.text("ec_class") + " " + rec.text("ec_class2")
                                                           : group);
        items.append({" " + grade + " " + subject + " " + rec.text("ec_group"),
                      plain_text(QVariant::fromValue(rec.single("ec_total")))});
    });
    return items;
}

ClassList class_list(RecordStore& store) {
    ClassList list;
    walk_series(store, [&](RecordBuffer& rec) {
        QString part = rec.text("ec_class").trimmed();
        if (part.isEmpty()) part = rec.text("ec_group").trimmed();
        if (part.isEmpty()) return;
        list.items.append(part);
        list.joined += part + ", ";
    });
    list.joined.chop(2);
    return list;
}

bool has_marks_files(const QString& data_folder) {
    return file_exists_ignoring_case(data_folder, "Exp_Mrk_control.txt") ||
           file_exists_ignoring_case(data_folder, "Exp_Control.dbf");
}

QString series_title(const QStringList& row) {
    QString class_part = row.value(3).trimmed();
    if (class_part.isEmpty()) class_part = row.value(5).trimmed();
    QString title = row.value(0).trimmed() + " " + row.value(1).trimmed() + " " + class_part;
    const QString second = row.value(4).trimmed();
    if (!second.isEmpty()) title += " " + second;
    return title;
}

}  // namespace veldo
