// A batch takes the table as it stands on the disk when it begins, whatever
// happened to the file since the open, and keeps what it had when the file
// can't be taken.
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <functional>

#include "store/dbf_table.h"
#include "tests/store/store_tables.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::make_table;
using testing::read_bytes;
using testing::walk_names;
using testing::write_bytes;

TEST(DbfReload, ABatchTakesTheTableAsItStandsNow) {
    const QList<DbfField> names{{"NAME", DbfType::Character, 10, 0}};
    const QList<DbfField> other{{"CODE", DbfType::Character, 4, 0}, {"MARK", DbfType::Numeric, 5, 1}};
    // Why; what another writer does to the open table's file; whether begin_batch then succeeds, the first
    // field of each record it walks, and the table's last error.
    const std::tuple<const char*, std::function<void(const QString&)>, bool, QStringList, DbfError::Code> cases[] = {
        {"records changed in place and one appended: the same layout is read into the same image",
         [&](const QString& p) {
             auto t = DbfTable::open(p);
             ASSERT_TRUE(t->Edit() && t->set_value(0, QStringLiteral("Anna-Marie")) && t->Update());
             ASSERT_TRUE(t->AddNew() && t->set_value(0, QStringLiteral("Carel")) && t->Update());
         },
         true, {"Anna-Marie", "Ben", "Carel"}, DbfError::None},
        {"a record deleted: it leaves the walk",
         [&](const QString& p) { ASSERT_TRUE(DbfTable::open(p)->Delete()); },
         true, {"Ben"}, DbfError::None},
        {"other fields written over the same file: the new layout is taken",
         [&](const QString& p) {
             const QString tmp = p + ".other";
             make_table(tmp, other, {{QStringLiteral("WISK"), 7.5}});
             write_bytes(p, read_bytes(tmp));
         },
         true, {"WISK"}, DbfError::None},
        {"a count past the records the file holds: refused, the table as it was",
         [&](const QString& p) {
             QByteArray bytes = read_bytes(p);
             bytes[4] = char(9);
             write_bytes(p, bytes);
         },
         false, {"Anna", "Ben"}, DbfError::Truncated},
        {"the file cut inside the header: refused, the table as it was",
         [&](const QString& p) { write_bytes(p, read_bytes(p).left(40)); }, false, {"Anna", "Ben"},
         DbfError::Truncated},
    };
    for (const auto& [why, change, begins, seen, error] : cases) {
        SCOPED_TRACE(why);
        QTemporaryDir dir;
        const QString p = dir.filePath("marks1.dbf");
        make_table(p, names, {{QStringLiteral("Anna")}, {QStringLiteral("Ben")}});
        auto held = DbfTable::open(p);
        ASSERT_TRUE(held);
        ASSERT_EQ(walk_names(*held), (QStringList{"Anna", "Ben"}));
        change(p);
        EXPECT_EQ(held->begin_batch(), begins);
        EXPECT_EQ(held->last_error().code, error);
        EXPECT_EQ(walk_names(*held), seen);
        EXPECT_TRUE(held->commit_batch() || !begins);
    }
}

}  // namespace
}  // namespace veldo
