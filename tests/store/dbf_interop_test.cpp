// A table we write, read by another dBASE reader (dbview).
#include <gtest/gtest.h>

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "store/dbf_table.h"
#include "store/table_layouts.h"
#include "tests/store/store_tables.h"
#include "util/cp1252.h"

namespace veldo {
namespace {

QByteArray dbview(const QStringList& args) {
    QProcess p;
    p.start("dbview", args);
    p.waitForFinished(30000);
    return p.readAllStandardOutput();
}

TEST(DbfInterop, AnotherReaderSeesOurRecordsFieldsAndCount) {
    ASSERT_FALSE(QStandardPaths::findExecutable("dbview").isEmpty()) << "dbview is installed by scripts/setup.sh";
    QTemporaryDir dir;
    const QString path = dir.filePath("punte1.dbf");
    testing::make_table(path, class_list_fields(),
                        {{"10001", "Botha, Anri", "94", "A"}, {"10002", "Nel, Marné", "A", QVariant()},
                         {"10003", "Smith, Emily", QVariant(), QVariant()}});
    auto t = DbfTable::open(path);
    t->MoveLast();
    ASSERT_TRUE(t->Delete());
    t->Close();

    // dbview -b -t: one line per record, fields by ":", blanks trimmed;
    // deleted records are left out.
    const QByteArray out = dbview({"-b", "-t", path});
    EXPECT_EQ(out, cp1252::encode("10001:Botha, Anri:94:A:\n10002:Nel, Marné:A::\n"));
    const QString info = QString::fromLatin1(dbview({"-i", path}));
    for (const char* line : {"File version  : 3", "Number of recs: 3", "Record length : 59"})
        EXPECT_TRUE(info.contains(line)) << info.toStdString();
}

}  // namespace
}  // namespace veldo
