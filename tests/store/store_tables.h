#pragma once
// Tables and record files for the store's tests: a dBASE table filled with
// rows and walked, and the records of a file shown field by field.

#include <QStringList>
#include <QVariantList>
#include <gtest/gtest.h>

#include "store/dbf_table.h"
#include "store/record_layout.h"
#include "util/text_helpers.h"

namespace veldo::testing {

// A new table of `fields` holding `rows`; a Null value leaves its field blank.
inline void make_table(const QString& path, const QList<DbfField>& fields, const QList<QVariantList>& rows) {
    ASSERT_TRUE(DbfTable::create(path, fields));
    auto t = DbfTable::open(path);
    ASSERT_TRUE(t);
    for (const QVariantList& row : rows) {
        ASSERT_TRUE(t->AddNew());
        for (int i = 0; i < row.size(); ++i) ASSERT_TRUE(t->set_value(i, row[i])) << i;
        ASSERT_TRUE(t->Update());
    }
}

// A field's text (the first unless told) of each record a walk sees, blanks cut.
inline QStringList walk_names(DbfTable& t, int field = 0) {
    QStringList seen;
    for (t.MoveFirst(); !t.Eof(); t.MoveNext()) seen << plain_text(t.value(field)).trimmed();
    return seen;
}

// Each record of `bytes` as the plain texts of its fields joined by '|'.
inline QStringList record_texts(const QByteArray& bytes, const RecordLayout& layout) {
    QStringList out;
    RecordBuffer rec(&layout);
    for (qsizetype at = 0; at < bytes.size(); at += layout.length()) {
        rec.set_bytes(bytes.mid(at, layout.length()));
        QStringList fields;
        for (int i = 0; i < int(layout.fields().size()); ++i) fields << plain_text(rec.value(i));
        out << fields.join('|');
    }
    return out;
}

}  // namespace veldo::testing
