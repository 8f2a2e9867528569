// The file-number table, the table opener and its catalogue steps.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "store/catalogue.h"
#include "store/record_store.h"
#include "store/school_record.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::read_bytes;
using testing::write_bytes;

TEST(RecordCount, RoundsToTheEvenNumberOnATie) {
    EXPECT_EQ(RecordStore::record_count_of(88, 44), 2);
    EXPECT_EQ(RecordStore::record_count_of(110, 44), 2);  // 2.5
    EXPECT_EQ(RecordStore::record_count_of(66, 44), 2);   // 1.5
    EXPECT_EQ(RecordStore::record_count_of(154, 44), 4);  // 3.5
    EXPECT_EQ(RecordStore::record_count_of(22, 44), 0);   // 0.5
    EXPECT_EQ(RecordStore::record_count_of(0, 44), 0);
    EXPECT_EQ(RecordStore::record_count_of(44 * 40000, 44), 32767);
}

TEST(FileNumbers, LowAndHighRangesGiveTheirFirstFreeNumber) {
    TempDrive t;
    RecordStore& s = *t.store;
    EXPECT_EQ(s.allocate_file_handle(true), 11);
    EXPECT_EQ(s.allocate_file_handle(true), 12);
    int high = s.allocate_file_handle(false);
    EXPECT_EQ(high, 101);
    EXPECT_EQ(s.open_file_count(), 3);
    s.close_table_file(high);
    EXPECT_EQ(high, 0);
    EXPECT_FALSE(s.file_in_use(101));
    EXPECT_EQ(s.allocate_file_handle(false), 101);
}

TEST(FileNumbers, ClosingZeroOrBelowACountOfZeroChangesNothing) {
    TempDrive t;
    RecordStore& s = *t.store;
    int none = 0;
    s.close_table_file(none);
    EXPECT_EQ(none, 0);
    EXPECT_EQ(s.open_file_count(), 0);
    int stray = 150;  // never handed out
    s.close_table_file(stray);
    EXPECT_EQ(stray, 0);
    EXPECT_EQ(s.open_file_count(), 0);
}

TEST(FileNumbers, AnExhaustedLowRangeEndsTheProgramThoughTheHighRangeIsFree) {
    TempDrive t;
    RecordStore& s = *t.store;
    for (int n = 11; n <= 100; ++n) ASSERT_EQ(s.allocate_file_handle(true), n);
    EXPECT_THROW(s.allocate_file_handle(true), ProgramEnd);
    ASSERT_FALSE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(t.dialogs.messages.first().text,
              "System error!\r\nAll available File Handles are used!\r\nSystem will now terminate... Please reload.");
    EXPECT_EQ(t.dialogs.messages.first().icon, MsgIcon::Critical);
    // The close-everything order ran before the end.
    EXPECT_FALSE(s.file_in_use(11));
}

TEST(OpenTable, AMissingFolderShowsTheMessageAndOpensNothing) {
    TempDrive t;
    const QString gone = t.path("nowhere");
    t.store->open_table("BRP", gone);
    ASSERT_EQ(t.dialogs.texts(), QStringList{"THE FOLDER " + gone + " DOES NOT EXIST!"});
    EXPECT_EQ(t.store->table("BRP").file_number, 0);
    t.run.language_afrikaans = true;
    t.store->open_table("NOSUCHCODE", gone);
    EXPECT_EQ(t.dialogs.texts().last(), "DIE GIDS " + gone + " BESTAAN NIE!");
}

TEST(OpenTable, AnUnknownCodeChangesNothingButTheFolderTestRuns) {
    TempDrive t;
    t.store->open_table("NOSUCHCODE", t.run.data_folder);
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(t.store->open_file_count(), 0);
}

TEST(OpenTable, AVanishedDriveOfTheCheckFolderEndsTheProgram) {
    TempDrive t;
    t.run.language_afrikaans = false;
    QTemporaryDir other;
    const QString drive = other.path();
    RunState& run = t.run;
    run.drive_root = drive;  // the check folder lies on this "drive"
    other.remove();
    EXPECT_THROW(t.store->open_table("BRP", t.run.data_folder, drive + "/data"), ProgramEnd);
    ASSERT_FALSE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(t.dialogs.messages.last().text,
              "NETWORK DRIVE  " + drive + "  NOT AVAILABLE ...\r\n\r\nCONTACT YOUR NETWORK ADMINISTRATOR !");
}

TEST(OpenTable, ASecondOpenInTheSameFolderKeepsTheNumberAndRewinds) {
    TempDrive t;
    RecordStore& s = *t.store;
    write_bytes(t.data("Brp_Dta_random.txt"), QByteArray(90, 'x'));
    s.open_table("BRP", t.run.data_folder);
    const int first = s.table("BRP").file_number;
    EXPECT_EQ(first, 101);
    EXPECT_EQ(s.table("BRP").record_count, 3);
    RecordLayout whole{{"all", FieldKind::Text, 30}};
    RecordBuffer rec(&whole);
    ASSERT_TRUE(s.read_next(first, rec));
    ASSERT_TRUE(s.read_next(first, rec));
    s.open_table("BRP", t.run.data_folder);
    EXPECT_EQ(s.table("BRP").file_number, first);
    EXPECT_EQ(s.file_folder(first), t.run.data_folder);
    EXPECT_EQ(s.file_code(first), "BRP");
    ASSERT_TRUE(s.read_next(first, rec));  // record 1 again
    EXPECT_FALSE(s.at_end(first));
}

TEST(OpenTable, AnotherFolderFreesTheOldNumberAndTakesTheLowestFree) {
    TempDrive t;
    RecordStore& s = *t.store;
    const QString second = t.path("second");
    QDir().mkpath(second);
    s.open_table("BRP", t.run.data_folder);
    s.allocate_file_handle(false);  // 102 taken by someone else
    s.open_table("BRP", second);
    EXPECT_EQ(s.table("BRP").file_number, 101);  // freed, then taken again
    EXPECT_EQ(s.file_folder(101), second);
    EXPECT_EQ(s.open_file_count(), 2);
}

TEST(OpenTable, FileNamesAreFoundWhateverTheirCase) {
    TempDrive t;
    write_bytes(t.data("BRP_DTA_RANDOM.TXT"), QByteArray(60, 'y'));
    t.store->open_table("BRP", t.run.data_folder);
    EXPECT_EQ(t.store->table("BRP").record_count, 2);
    EXPECT_FALSE(QFileInfo::exists(t.data("Brp_Dta_random.txt")));
}

TEST(OpenTable, TheSchoolRecordIsReadAndTakesANewNumberEachTime) {
    TempDrive t;
    RecordBuffer rec(&school_record_layout());
    rec.set_text("SD_SKOOL", "HOëRSKOOL DIE KRANS");
    rec.set_text("SD_PROV", "WES-KAAP");
    write_bytes(t.data("skl_dta_random.txt"), rec.bytes());
    t.store->open_table("SKL", t.run.data_folder);
    EXPECT_EQ(t.store->table("SKL").record_count, 1);
    EXPECT_EQ(t.store->buffer("SKL").text("SD_SKOOL").trimmed(), "HOëRSKOOL DIE KRANS");
    EXPECT_EQ(t.store->buffer("SKL").text("SD_PROV").trimmed(), "WES-KAAP");
    const int first = t.store->table("SKL").file_number;
    t.store->open_table("SKL", t.run.data_folder);
    EXPECT_NE(t.store->table("SKL").file_number, first);
    EXPECT_TRUE(t.store->file_in_use(first));  // taken until it is closed
}

TEST(OpenTable, ABlankFolderMeansTheYearlyAdministrationFolder) {
    TempDrive t;
    QDir().mkpath(t.path("L26"));
    t.store->open_table("BRP");
    EXPECT_EQ(t.store->file_folder(t.store->table("BRP").file_number), t.path("L26"));
    EXPECT_EQ(t.run.school_folder, t.path("L26"));
    EXPECT_TRUE(QFileInfo::exists(t.path("L26/Brp_Dta_random.txt")));
}

TEST(OpenTable, SingleRecordAdditionsGetAnEmptyFirstRecord) {
    TempDrive t;
    t.run.current_year = "2026";
    t.store->open_table("SKLADD", t.run.data_folder);
    EXPECT_EQ(read_bytes(t.data("skl_add_random.txt")), QByteArray(kSchoolAdditionLength, ' '));
    EXPECT_EQ(t.store->table("SKLADD").record_count, 1);
    t.store->open_table("SKLHB", t.run.data_folder);
    EXPECT_EQ(t.store->table("SKLHB").record_count, 0);
    EXPECT_EQ(read_bytes(t.data("skl_h_b_random.txt")).size(), 0);
}

TEST(OpenTable, AnEmptySymbolFileGetsTheSevenStandardRows) {
    TempDrive t;
    t.store->open_table("PI2", t.run.data_folder);
    EXPECT_EQ(t.store->table("PI2").record_count, 7);
    const QByteArray raw = read_bytes(t.data("pi2_random.txt"));
    ASSERT_EQ(raw.size(), 70);
    RecordBuffer rec(&symbol_record_layout());
    rec.set_bytes(raw.mid(0, 10));
    EXPECT_EQ(rec.text("pi2_simbl"), "1 ");
    EXPECT_FLOAT_EQ(rec.single("pi2_grns_o"), 0.0f);
    EXPECT_FLOAT_EQ(rec.single("pi2_grns_b"), 29.0f);
    rec.set_bytes(raw.mid(60, 10));
    EXPECT_EQ(rec.text("pi2_simbl"), "7 ");
    EXPECT_FLOAT_EQ(rec.single("pi2_grns_b"), 100.0f);
}

TEST(OpenTable, ARunawayLogAbove2000RecordsIsEmptiedWithABox) {
    TempDrive t;
    write_bytes(t.data("Ppl_add_random.txt"), QByteArray(177 * 2001, 'z'));
    t.store->open_table("PPLADD", t.run.data_folder);
    EXPECT_EQ(t.dialogs.texts(), QStringList{"?"});
    EXPECT_EQ(t.store->table("PPLADD").record_count, 0);
    EXPECT_EQ(QFileInfo(t.data("Ppl_add_random.txt")).size(), 0);
}

TEST(OpenTable, ThePromotionRulesAreMadeAnewWhenTheirCountIsOdd) {
    TempDrive t;
    write_bytes(t.data("prm_prom_random.txt"), QByteArray(8 * 12, 'p'));
    t.store->open_table("PRMPROM", t.run.data_folder);
    EXPECT_EQ(QFileInfo(t.data("prm_prom_random.txt")).size(), 0);
    EXPECT_NE(t.store->table("PRMPROM").file_number, 0);
    write_bytes(t.data("prm_prom_random.txt"), QByteArray(8 * 5, 'p'));
    t.store->open_table("PRMPROM", t.path("data"));
    EXPECT_EQ(t.store->table("PRMPROM").record_count, 5);
}

TEST(OpenTable, TheSecondBehaviourFileIsMergedIn) {
    TempDrive t;
    write_bytes(t.data("hw2_random.txt"), QByteArray(129, 'a'));
    write_bytes(t.data("gedrag2_random.txt"), QByteArray(129 * 2, 'b'));
    t.store->open_table("HW2", t.run.data_folder);
    EXPECT_EQ(t.store->table("HW2").record_count, 3);
    EXPECT_EQ(read_bytes(t.data("hw2_random.txt")), QByteArray(129, 'a') + QByteArray(258, 'b'));
    EXPECT_FALSE(QFileInfo::exists(t.data("gedrag2_random.txt")));
}

TEST(OpenTable, AllTablesOpenInCatalogueOrder) {
    TempDrive t;
    t.store->open_table("*", t.run.data_folder);
    EXPECT_EQ(t.store->table("SKL").file_number, 101);
    EXPECT_EQ(t.store->table("NWEKLS").file_number, 101 + int(table_catalogue().size()) - 1);
    EXPECT_EQ(t.store->table("E_C").file_number, 0);  // not in the catalogue
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
}

TEST(Migration, RunsOnceWhileItsMarkerIsAbsent) {
    TempDrive t;
    t.run.current_year = "2016";
    write_bytes(t.data("Gsn_Cmp_random.txt"), QByteArray(2120, 'g'));
    t.store->open_table("GSN", t.run.data_folder);
    EXPECT_TRUE(QFileInfo::exists(t.data("gsncmp_convert.2016")));
    EXPECT_TRUE(QFileInfo::exists(t.data("gsncmp_convert2.2016")));
    EXPECT_EQ(QFileInfo(t.data("gsncmp_convert.2016")).size(), 0);
    EXPECT_EQ(read_bytes(t.data("Gsn_Cmp_prv_random.txt")), QByteArray(2120, 'g'));
    EXPECT_EQ(read_bytes(t.data("Gsn_Cmp_random.txt")), QByteArray(2120, 'g'));
}

TEST(Migration, TheSchoolAdditionsMigrateOnlyBefore2017) {
    TempDrive t;
    t.run.current_year = "2017";
    t.store->open_table("PPLHST", t.run.data_folder);
    EXPECT_TRUE(QFileInfo::exists(t.data("ph2014_random.txt")));
    EXPECT_EQ(previous_layout_name("skl_add_random.txt"), "skl_add_prv_random.txt");
    t.store->open_table("SKLADD", t.run.data_folder);
    EXPECT_FALSE(QFileInfo::exists(t.data("skladd_convert.2016")));
}

TEST(Migration, APresentMarkerStopsIt) {
    TempDrive t;
    write_bytes(t.data("pi54_random.txt"), {});
    write_bytes(t.data("pi5_random.txt"), QByteArray(89, 'q'));
    t.store->open_table("PI5", t.run.data_folder);
    EXPECT_FALSE(QFileInfo::exists(t.data("pi5_prv_random.txt")));
}

TEST(ExpMrkControl, OpensWithoutRememberingSoEachCallReopensOnTheSameNumber) {
    TempDrive t;
    write_bytes(t.data("Exp_Mrk_control.txt"), QByteArray(88, ' '));
    t.store->open_exp_mrk_control("E_C", t.run.data_folder);
    const int first = t.store->table("E_C").file_number;
    EXPECT_EQ(t.store->series_count(), 2);
    t.store->plain_close(first);
    EXPECT_TRUE(t.store->file_in_use(first));  // a plain close keeps the number
    t.store->open_exp_mrk_control("E_C", t.run.data_folder);
    EXPECT_EQ(t.store->table("E_C").file_number, first);
    EXPECT_EQ(t.store->file_folder(first), "");
    t.store->open_exp_mrk_control("SKL", t.run.data_folder);  // not its code: nothing
    EXPECT_EQ(t.store->open_file_count(), 1);
}

TEST(ExpMrkControl, AMissingFileIsCreatedEmpty) {
    TempDrive t;
    t.store->open_exp_mrk_control("*", t.run.data_folder);
    EXPECT_EQ(t.store->series_count(), 0);
    EXPECT_TRUE(QFileInfo::exists(t.data("exp_mrk_control.txt")));
}

TEST(CloseEverything, FreesAllNumbersAndOpensTheSchoolTableAgain) {
    TempDrive t;
    RecordStore& s = *t.store;
    t.run.school_folder = t.run.data_folder;
    s.open_table("BRP", t.run.data_folder);
    s.open_table("KLS", t.run.data_folder);
    s.allocate_file_handle(true);
    int order = RecordStore::kCloseAll;
    s.close_table_file(order);
    EXPECT_EQ(order, RecordStore::kCloseAll);
    EXPECT_EQ(s.table("BRP").file_number, 0);
    EXPECT_EQ(s.table("KLS").file_number, 0);
    EXPECT_FALSE(s.file_in_use(11));
    EXPECT_EQ(s.open_file_count(), 1);  // the school table, open again
    EXPECT_EQ(s.table("SKL").file_number, 101);
}

}  // namespace
}  // namespace veldo
