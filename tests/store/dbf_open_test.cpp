// Opening a dBASE table the family's way: templates and renewal.
#include <gtest/gtest.h>

#include <QFileInfo>
#include <functional>

#include "store/dbf_open.h"
#include "store/record_store.h"
#include "tests/store/store_tables.h"
#include "tests/support/temp_drive.h"
#include "tests/support/unprivileged.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::make_table;
using testing::read_bytes;
using testing::write_bytes;

struct FamilyDbfOpener : ::testing::Test {
    TempDrive t;
    QString program = t.path("program");
    const QList<DbfField> fields{{"LPS_KODE", DbfType::Character, 2, 0}, {"LPS_BESK", DbfType::Character, 30, 0}};
    void SetUp() override {
        QDir().mkpath(program);
        t.run.start_folder = program;
    }
};

TEST_F(FamilyDbfOpener, AMissingTableIsMadeFromItsTemplateInAFolderMadeForIt) {
    ASSERT_TRUE(DbfTable::create(program + "/LWISK_P_S.org", fields));
    auto table = open_dbf_table(*t.store, t.path("data/new"), "LWISK_P_S");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->field_count(), 2);
    EXPECT_TRUE(QFileInfo::exists(t.path("ProgramData/KESTRALIN/networklock.txt")));
}

TEST_F(FamilyDbfOpener, ATableWithRowsIsOpenedAsItIs) {
    make_table(t.data("LNW_P_S.dbf"), fields, {{"1", "Uitstekend"}});
    ASSERT_TRUE(DbfTable::create(program + "/LNW_P_S.org", fields));
    auto table = open_dbf_table(*t.store, t.run.data_folder, "LNW_P_S");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->RecordCount(), 1);
    EXPECT_EQ(table->value(1).toString().trimmed(), "Uitstekend");
}

// No table and no template, or an empty table without its template: Missing.
TEST_F(FamilyDbfOpener, AnEmptyTableIsMadeAfreshAndWithoutATemplateItGoes) {
    const QList<DbfField> old_fields{{"OLD", DbfType::Character, 5, 0}};
    ASSERT_TRUE(DbfTable::create(t.data("LAFR_P_S.dbf"), old_fields));
    ASSERT_TRUE(DbfTable::create(program + "/LAFR_P_S.org", fields));
    auto table = open_dbf_table(*t.store, t.run.data_folder, "LAFR_P_S");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->field(0).name, "LPS_KODE");

    ASSERT_TRUE(DbfTable::create(t.data("LGES_P_S.dbf"), old_fields));
    const auto refused = [&](const QString& name) {  // the error of an open that gives no table
        DbfError error;
        return open_dbf_table(*t.store, t.run.data_folder, name, &error) ? -1 : int(error.code);
    };
    EXPECT_EQ((QList<int>{refused("LGES_P_S"), refused("LXX_P_S")}),
              (QList<int>{DbfError::Missing, DbfError::Missing}));
    EXPECT_FALSE(QFileInfo::exists(t.data("LGES_P_S.dbf")));
}

// A data set that may not be written ends the run with the system's message,
// whichever opener meets it first, and nothing is changed.
TEST_F(FamilyDbfOpener, AReadOnlyDataSetEndsTheRunWithItsMessage) {
    if (veldo::testing::rerun_unprivileged()) return;
    const QString path = t.data("LWISK_P_S.dbf"), record_file = t.data("exp_mrk_control.txt");
    const QString symbols = t.data("pi2_random.txt");
    make_table(path, fields, {{"1"}});
    write_bytes(record_file, QByteArray(44, ' '));
    write_bytes(symbols, QByteArray(10, ' '));
    for (const QString& f : {path, record_file, symbols})
        QFile::setPermissions(f, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    const QByteArray before = read_bytes(path);

    const std::tuple<const char*, QString, std::function<void()>> cases[] = {  // the opener, the file named
        {"family opener", path, [&] { open_dbf_table(*t.store, t.run.data_folder, "LWISK_P_S"); }},
        {"table to write", path, [&] { open_table_to_write(t.run, path); }},
        {"record table", symbols, [&] { t.store->open_table("PI2", t.run.data_folder); }},
        {"record file", record_file, [&] { t.store->open_exp_mrk_control("E_C", t.run.data_folder); }},
    };
    for (const auto& [opener, shown, open] : cases) {
        SCOPED_TRACE(opener);
        t.dialogs.messages.clear();
        for (const bool afrikaans : {false, true}) {
            t.run.language_afrikaans = afrikaans;
            EXPECT_THROW(open(), ProgramEnd);
        }
        EXPECT_EQ(t.dialogs.texts(), (QStringList{"DATASET " + shown + "  IS 'READ ONLY' ... CONTACT VELDO-HOUSE !",
                                                  "DATASTEL " + shown + "  IS 'READ ONLY' ... SKAKEL VELDO-HOUSE !"}));
        for (const auto& m : t.dialogs.messages) EXPECT_EQ(m.icon, MsgIcon::Critical);
    }
    EXPECT_EQ(read_bytes(path), before);
    EXPECT_EQ(read_bytes(record_file), QByteArray(44, ' '));
    // Read-only access stays open to readers.
    EXPECT_TRUE(DbfTable::open(path, nullptr, DbfAccess::ReadOnly));
}

}  // namespace
}  // namespace veldo
