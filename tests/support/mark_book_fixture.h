#pragma once
// A marks table with the template's 42 fields in a temporary folder, filled
// from rows of texts: number, name, then the marks of setup rows 1 on.

#include <QDir>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

#include "markbook/column_lists.h"
#include "markbook/setup_model.h"
#include "store/dbf_table.h"
#include "store/table_layouts.h"
#include "tests/store/store_tables.h"

namespace veldo::testing {

inline void fill_marks_table(const QString& path, const QList<QStringList>& rows) {
    QList<QVariantList> values;
    for (const QStringList& row : rows) {
        QVariantList& v = values.emplace_back();
        for (const QString& text : row) v << (text.isEmpty() ? QVariant() : QVariant(text));
    }
    make_table(path, mark_book_fields(), values);
}

// A marks row: number, name, then mark per setup row from row 1.
inline QStringList marks_row(int number, const QString& name, const QStringList& marks) {
    return QStringList{QString::number(number), name} + marks;
}

// The stored text of each field of the record at `position`, right-trimmed,
// "" for Null.
inline QStringList stored_row(DbfTable& t, int position) {
    t.MoveFirst();
    t.Move(position);
    QStringList out;
    for (int f = 0; f < t.field_count(); ++f) {
        const QVariant v = t.value(f);
        QString text = v.isValid() ? (v.typeId() == QMetaType::Double ? QString::number(v.toDouble()) : v.toString())
                                   : QString();
        while (text.endsWith(' ')) text.chop(1);
        out << text;
    }
    return out;
}

// A marks table marks1.dbf in a temporary folder, worked under `setup`: for
// the tests of the arithmetic and of the actions on a book's columns.
struct MarksFile {
    QTemporaryDir dir;
    QString path = dir.filePath("marks1.dbf");
    MarkBookSetup setup;
    ColumnLists lists() const { return ColumnLists::from_setup(setup); }
    std::unique_ptr<DbfTable> book(const QList<QStringList>& rows) {
        fill_marks_table(path, rows);
        return DbfTable::open(path);
    }
    // Field `f` of every record, in table order.
    QStringList column(int f) const {
        auto t = DbfTable::open(path);
        QStringList out;
        for (int r = 0; r < t->RecordCount(); ++r) out << stored_row(*t, r)[f];
        return out;
    }
};

// The setup rows named (1 on) as "NAME|TOTAL|TARGET|OUT OF|CYCLE".
inline QStringList setup_rows(const MarkBookSetup& s, const QList<int>& rows) {
    QStringList out;
    for (int r : rows) {
        const SetupRow& row = s.rows[std::size_t(r - 1)];
        out << QStringList{row.name, row.total, row.target, row.out_of, row.cycle}.join('|');
    }
    return out;
}

}  // namespace veldo::testing
