// Older data folders: a dBASE source becomes the record file at opening.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "store/dbf_table.h"
#include "store/record_store.h"
#include "store/school_record.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::read_bytes;
using testing::write_bytes;

void make_table(const QString& path, const QList<DbfField>& fields, const QList<QList<QVariant>>& rows) {
    ASSERT_TRUE(DbfTable::create(path, fields));
    auto t = DbfTable::open(path);
    ASSERT_TRUE(t);
    for (const auto& row : rows) {
        t->AddNew();
        for (int i = 0; i < row.size(); ++i) t->set_value(i, row[i]);
        ASSERT_TRUE(t->Update());
    }
}

TEST(Conversion, TheSymbolTableBecomesRecordsAndMovesToSave) {
    TempDrive t;
    make_table(t.data("pi2_dta.dbf"),
               {{"PI2_SIMBL", DbfType::Character, 2, 0}, {"PI2_GRNS_B", DbfType::Numeric, 6, 1},
                {"PI2_GRNS_O", DbfType::Numeric, 6, 1}},
               {{"A", 100.0, 80.0}, {QVariant(), QVariant(), QVariant()}, {"B", 79.9, 70.0},
                {"C", 69.9, 60.0}, {"D", 59.9, 50.0}, {"E", 49.9, 40.0}, {"F", 39.9, 0.0}});
    t.store->open_table("PI2", t.run.data_folder);

    const QByteArray raw = read_bytes(t.data("pi2_random.txt"));
    ASSERT_EQ(raw.size(), 70);
    RecordBuffer rec(&symbol_record_layout());
    rec.set_bytes(raw.left(10));
    EXPECT_EQ(rec.text("pi2_simbl"), "A ");
    EXPECT_FLOAT_EQ(rec.single("pi2_grns_b"), 100.0f);
    EXPECT_FLOAT_EQ(rec.single("pi2_grns_o"), 80.0f);
    rec.set_bytes(raw.mid(10, 10));  // a Null row: blank text, zero numbers
    EXPECT_EQ(rec.bytes(), QByteArray("  ") + QByteArray(8, '\0'));
    rec.set_bytes(raw.mid(20, 10));
    EXPECT_FLOAT_EQ(rec.single("pi2_grns_b"), 79.9f);

    EXPECT_FALSE(QFileInfo::exists(t.data("pi2_dta.dbf")));
    EXPECT_TRUE(QFileInfo::exists(t.data("save/pi2_dta.dbf")));
    EXPECT_EQ(t.store->table("PI2").record_count, 7);
}

TEST(Conversion, AnEmptySourceGivesAnEmptyFileAndIsMovedAllTheSame) {
    TempDrive t;
    make_table(t.data("pi2_dta.dbf"), {{"PI2_SIMBL", DbfType::Character, 2, 0}}, {});
    t.store->open_table("PI2", t.run.data_folder);
    EXPECT_TRUE(QFileInfo::exists(t.data("save/pi2_dta.dbf")));
    EXPECT_EQ(t.store->table("PI2").record_count, 7);  // empty after the conversion: the standard rows
}

TEST(Conversion, TheSchoolTableIsReadByFieldNameAndStaysInPlace) {
    TempDrive t;
    make_table(t.data("skl_dta.dbf"),
               {{"SD_SKOOL", DbfType::Character, 60, 0}, {"SD_PROV", DbfType::Character, 20, 0},
                {"SD_TME_OUT", DbfType::Numeric, 5, 0}, {"SD_ST_3", DbfType::Character, 10, 0}},
               {{"HOëRSKOOL DIE KRANS EN 'N NAAM LANGER AS VYFTIG LETTERS", "GAUTENG", 450.0, "X3"}});
    t.store->open_table("SKL", t.run.data_folder);
    RecordBuffer& skl = t.store->buffer("SKL");
    EXPECT_EQ(skl.text("SD_SKOOL"), QString("HOëRSKOOL DIE KRANS EN 'N NAAM LANGER AS VYFTIG LETTERS").left(50));
    EXPECT_EQ(skl.text("SD_PROV").trimmed(), "GAUTENG");
    EXPECT_EQ(skl.int16("SD_TME_OUT"), 450);
    EXPECT_EQ(skl.text("SD_ST_3").trimmed(), "X3");
    EXPECT_EQ(skl.text("SD_KRING").trimmed(), "");  // a field the old table lacks
    EXPECT_EQ(QFileInfo(t.data("Skl_Dta_random.txt")).size(), school_record_layout().length());
    EXPECT_TRUE(QFileInfo::exists(t.data("skl_dta.dbf")));
    EXPECT_FALSE(QFileInfo::exists(t.data("save")));
}

TEST(Conversion, ARecordFileBesideTheSourceKeepsTheSourceUnread) {
    TempDrive t;
    make_table(t.data("pi2_dta.dbf"), {{"PI2_SIMBL", DbfType::Character, 2, 0}}, {{"Z"}});
    RecordBuffer rec(&symbol_record_layout());
    rec.set_text("pi2_simbl", "Q");
    write_bytes(t.data("pi2_random.txt"), rec.bytes().repeated(7));
    t.store->open_table("PI2", t.run.data_folder);
    EXPECT_TRUE(QFileInfo::exists(t.data("pi2_dta.dbf")));
    EXPECT_EQ(read_bytes(t.data("pi2_random.txt")), rec.bytes().repeated(7));
}

}  // namespace
}  // namespace veldo
