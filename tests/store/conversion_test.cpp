// Older data folders: a dBASE source becomes the record file at opening.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "store/record_store.h"
#include "store/school_record.h"
#include "tests/store/store_tables.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::make_table;
using testing::read_bytes;
using testing::record_texts;
using testing::write_bytes;

// A Null row becomes blank text and zero numbers; the source moves to save/.
TEST(Conversion, TheSymbolTableBecomesRecordsAndMovesToSave) {
    TempDrive t;
    make_table(t.data("pi2_dta.dbf"),
               {{"PI2_SIMBL", DbfType::Character, 2, 0}, {"PI2_GRNS_B", DbfType::Numeric, 6, 1},
                {"PI2_GRNS_O", DbfType::Numeric, 6, 1}},
               {{"A", 100.0, 80.0}, {QVariant(), QVariant(), QVariant()}, {"B", 79.9, 70.0},
                {"C", 69.9, 60.0}, {"D", 59.9, 50.0}, {"E", 49.9, 40.0}, {"F", 39.9, 0.0}});
    t.store->open_table("PI2", t.run.data_folder);
    EXPECT_EQ(record_texts(read_bytes(t.data("pi2_random.txt")), symbol_record_layout()),
              (QStringList{"A |100|80", "  |0|0", "B |79.9|70", "C |69.9|60", "D |59.9|50", "E |49.9|40",
                           "F |39.9|0"}));
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

// Text cut to the record's width; a field the old table lacks stays blank.
TEST(Conversion, TheSchoolTableIsReadByFieldNameAndStaysInPlace) {
    TempDrive t;
    const QString school = QStringLiteral("HOëRSKOOL DIE KRANS EN 'N NAAM LANGER AS VYFTIG LETTERS");
    make_table(t.data("skl_dta.dbf"),
               {{"SD_SKOOL", DbfType::Character, 60, 0}, {"SD_PROV", DbfType::Character, 20, 0},
                {"SD_TME_OUT", DbfType::Numeric, 5, 0}, {"SD_ST_3", DbfType::Character, 10, 0}},
               {{school, "GAUTENG", 450.0, "X3"}});
    t.store->open_table("SKL", t.run.data_folder);
    RecordBuffer& skl = t.store->buffer("SKL");
    EXPECT_EQ(skl.text("SD_SKOOL"), school.left(50));
    const QStringList got{skl.text("SD_PROV").trimmed(), QString::number(skl.int16("SD_TME_OUT")),
                          skl.text("SD_ST_3").trimmed(), skl.text("SD_KRING").trimmed()};
    EXPECT_EQ(got, (QStringList{"GAUTENG", "450", "X3", ""}));
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
