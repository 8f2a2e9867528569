// The file-number table, the table opener and its catalogue steps.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "store/catalogue.h"
#include "store/record_store.h"
#include "store/school_record.h"
#include "tests/store/store_tables.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::read_bytes;
using testing::record_texts;
using testing::write_bytes;

class StoreTest : public ::testing::Test {
protected:
    TempDrive t;
    RecordStore& s = *t.store;
    bool exists(const QString& name) const { return QFileInfo::exists(t.data(name)); }
    qint64 size(const QString& name) const { return QFileInfo(t.data(name)).size(); }
};
using FileNumbers = StoreTest;
using OpenTable = StoreTest;
using Migration = StoreTest;
using ExpMrkControl = StoreTest;
using CloseEverything = StoreTest;

// Bytes over the record length, rounded to the even number on a tie, at most 32767.
TEST(RecordCount, RoundsToTheEvenNumberOnATie) {
    const int rows[][2] = {{88, 2}, {110, 2}, {66, 2}, {154, 4}, {22, 0}, {0, 0}, {44 * 40000, 32767}};
    for (const auto& r : rows) EXPECT_EQ(RecordStore::record_count_of(r[0], 44), r[1]) << r[0];
}

TEST_F(FileNumbers, LowAndHighRangesGiveTheirFirstFreeNumber) {
    for (int number : {0, 150}) {  // closing 0, or below a count of 0, changes nothing but the number
        s.close_table_file(number);
        EXPECT_EQ(number, 0);
        EXPECT_EQ(s.open_file_count(), 0);
    }
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

TEST_F(FileNumbers, AnExhaustedLowRangeEndsTheProgramThoughTheHighRangeIsFree) {
    for (int n = 11; n <= 100; ++n) ASSERT_EQ(s.allocate_file_handle(true), n);
    EXPECT_THROW(s.allocate_file_handle(true), ProgramEnd);
    ASSERT_FALSE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(t.dialogs.messages.first().text,
              "System error!\r\nAll available File Handles are used!\r\nSystem will now terminate... Please reload.");
    EXPECT_EQ(t.dialogs.messages.first().icon, MsgIcon::Critical);
    EXPECT_FALSE(s.file_in_use(11));  // the close-everything order ran before the end
}

// A missing folder: the message, nothing opened, whether the code is known
// or not; an unknown code in a folder that is there changes nothing.
TEST_F(OpenTable, AMissingFolderShowsTheMessageAndOpensNothing) {
    const QString gone = t.path("nowhere");
    s.open_table("BRP", gone);
    ASSERT_EQ(t.dialogs.texts(), QStringList{"THE FOLDER " + gone + " DOES NOT EXIST!"});
    EXPECT_EQ(s.table("BRP").file_number, 0);
    t.run.language_afrikaans = true;
    s.open_table("NOSUCHCODE", gone);
    EXPECT_EQ(t.dialogs.texts().last(), "DIE GIDS " + gone + " BESTAAN NIE!");
    t.dialogs.messages.clear();
    s.open_table("NOSUCHCODE", t.run.data_folder);
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(s.open_file_count(), 0);
}

TEST_F(OpenTable, AVanishedDriveOfTheCheckFolderEndsTheProgram) {
    t.run.language_afrikaans = false;
    QTemporaryDir other;
    const QString drive = other.path();
    t.run.drive_root = drive;  // the check folder lies on this "drive"
    other.remove();
    EXPECT_THROW(s.open_table("BRP", t.run.data_folder, drive + "/data"), ProgramEnd);
    ASSERT_FALSE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(t.dialogs.messages.last().text,
              "NETWORK DRIVE  " + drive + "  NOT AVAILABLE ...\r\n\r\nCONTACT YOUR NETWORK ADMINISTRATOR !");
}

TEST_F(OpenTable, ASecondOpenInTheSameFolderKeepsTheNumberAndRewinds) {
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

TEST_F(OpenTable, AnotherFolderFreesTheOldNumberAndTakesTheLowestFree) {
    const QString second = t.path("second");
    QDir().mkpath(second);
    s.open_table("BRP", t.run.data_folder);
    s.allocate_file_handle(false);  // 102 taken by someone else
    s.open_table("BRP", second);
    EXPECT_EQ(s.table("BRP").file_number, 101);  // freed, then taken again
    EXPECT_EQ(s.file_folder(101), second);
    EXPECT_EQ(s.open_file_count(), 2);
}

// The file is found whatever its case (the catalogue spells it Skl_Dta_random.txt).
TEST_F(OpenTable, TheSchoolRecordIsReadAndTakesANewNumberEachTime) {
    RecordBuffer rec(&school_record_layout());
    rec.set_text("SD_SKOOL", "HOëRSKOOL DIE KRANS");
    write_bytes(t.data("skl_dta_random.txt"), rec.bytes());
    s.open_table("SKL", t.run.data_folder);
    EXPECT_EQ(s.table("SKL").record_count, 1);
    EXPECT_FALSE(exists("Skl_Dta_random.txt"));
    EXPECT_EQ(s.buffer("SKL").bytes(), rec.bytes());
    const int first = s.table("SKL").file_number;
    s.open_table("SKL", t.run.data_folder);
    EXPECT_NE(s.table("SKL").file_number, first);
    EXPECT_TRUE(s.file_in_use(first));  // taken until it is closed
}

TEST_F(OpenTable, ABlankFolderMeansTheYearlyAdministrationFolder) {
    QDir().mkpath(t.path("L26"));
    s.open_table("BRP");
    EXPECT_EQ(s.file_folder(s.table("BRP").file_number), t.path("L26"));
    EXPECT_EQ(t.run.school_folder, t.path("L26"));
    EXPECT_TRUE(QFileInfo::exists(t.path("L26/Brp_Dta_random.txt")));
}

// Steps of single tables: the school additions get an empty first record,
// the symbols their seven standard rows; a runaway log above 2000 records is
// emptied with a box; the promotion rules are made anew when their count is
// odd; the second behaviour file is merged in.
TEST_F(OpenTable, TablesWithTheirOwnStepsOpenAfterThem) {
    s.open_table("SKLADD", t.run.data_folder);
    EXPECT_EQ(read_bytes(t.data("skl_add_random.txt")), QByteArray(kSchoolAdditionLength, ' '));
    EXPECT_EQ(s.table("SKLADD").record_count, 1);
    s.open_table("SKLHB", t.run.data_folder);
    EXPECT_EQ(s.table("SKLHB").record_count, 0);
    EXPECT_EQ(size("skl_h_b_random.txt"), 0);

    s.open_table("PI2", t.run.data_folder);
    EXPECT_EQ(s.table("PI2").record_count, 7);
    EXPECT_EQ(record_texts(read_bytes(t.data("pi2_random.txt")), symbol_record_layout()),
              (QStringList{"1 |29|0", "2 |39|30", "3 |49|40", "4 |59|50", "5 |69|60", "6 |79|70", "7 |100|80"}));

    t.dialogs.messages.clear();
    write_bytes(t.data("Ppl_add_random.txt"), QByteArray(177 * 2001, 'z'));
    s.open_table("PPLADD", t.run.data_folder);
    EXPECT_EQ(t.dialogs.texts(), QStringList{"?"});
    EXPECT_EQ(s.table("PPLADD").record_count, 0);
    EXPECT_EQ(size("Ppl_add_random.txt"), 0);

    write_bytes(t.data("prm_prom_random.txt"), QByteArray(8 * 12, 'p'));
    s.open_table("PRMPROM", t.run.data_folder);
    EXPECT_EQ(size("prm_prom_random.txt"), 0);
    EXPECT_NE(s.table("PRMPROM").file_number, 0);
    write_bytes(t.data("prm_prom_random.txt"), QByteArray(8 * 5, 'p'));
    s.open_table("PRMPROM", t.path("data"));
    EXPECT_EQ(s.table("PRMPROM").record_count, 5);

    write_bytes(t.data("hw2_random.txt"), QByteArray(129, 'a'));
    write_bytes(t.data("gedrag2_random.txt"), QByteArray(129 * 2, 'b'));
    s.open_table("HW2", t.run.data_folder);
    EXPECT_EQ(s.table("HW2").record_count, 3);
    EXPECT_EQ(read_bytes(t.data("hw2_random.txt")), QByteArray(129, 'a') + QByteArray(258, 'b'));
    EXPECT_FALSE(exists("gedrag2_random.txt"));
}

// Four symbols in the old outcomes years (a year prefix of 4 to 6 before
// 2013), seven otherwise: each side of each bound.
TEST_F(OpenTable, TheSymbolsAreFourInTheOldOutcomesYears) {
    const QStringList four{"1 |34|0", "2 |49|35", "3 |69|50", "4 |100|70"};
    const struct {
        const char *prefix, *year;
        bool four;
    } rows[] = {{"3", "2012", false}, {"4", "2012", true}, {"6", "2012", true}, {"7", "2012", false}, {"4", "2013", false}};
    for (const auto& r : rows) {
        SCOPED_TRACE(std::string(r.prefix) + " " + r.year);
        QFile::remove(t.data("pi2_random.txt"));
        t.run.year_prefix = r.prefix;
        t.run.current_year = r.year;
        RecordStore(t.run).open_table("PI2", t.run.data_folder);
        const QStringList symbols = record_texts(read_bytes(t.data("pi2_random.txt")), symbol_record_layout());
        EXPECT_EQ(symbols.size(), r.four ? 4 : 7);
        if (r.four) {
            EXPECT_EQ(symbols, four);
        }
    }
}

TEST_F(OpenTable, AllTablesOpenInCatalogueOrder) {
    s.open_table("*", t.run.data_folder);
    EXPECT_EQ(s.table("SKL").file_number, 101);
    EXPECT_EQ(s.table("NWEKLS").file_number, 101 + int(table_catalogue().size()) - 1);
    EXPECT_EQ(s.table("E_C").file_number, 0);  // not in the catalogue
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
}

TEST_F(Migration, RunsOnceWhileItsMarkerIsAbsent) {
    t.run.current_year = "2016";
    write_bytes(t.data("Gsn_Cmp_random.txt"), QByteArray(2120, 'g'));
    s.open_table("GSN", t.run.data_folder);
    EXPECT_TRUE(exists("gsncmp_convert.2016"));
    EXPECT_TRUE(exists("gsncmp_convert2.2016"));
    EXPECT_EQ(size("gsncmp_convert.2016"), 0);
    EXPECT_EQ(read_bytes(t.data("Gsn_Cmp_prv_random.txt")), QByteArray(2120, 'g'));
    EXPECT_EQ(read_bytes(t.data("Gsn_Cmp_random.txt")), QByteArray(2120, 'g'));
}

TEST_F(Migration, TheSchoolAdditionsMigrateOnlyBefore2017AndAPresentMarkerStopsIt) {
    t.run.current_year = "2017";
    s.open_table("PPLHST", t.run.data_folder);
    EXPECT_TRUE(exists("ph2014_random.txt"));
    EXPECT_EQ(previous_layout_name("skl_add_random.txt"), "skl_add_prv_random.txt");
    s.open_table("SKLADD", t.run.data_folder);
    EXPECT_FALSE(exists("skladd_convert.2016"));

    write_bytes(t.data("pi54_random.txt"), {});
    write_bytes(t.data("pi5_random.txt"), QByteArray(89, 'q'));
    s.open_table("PI5", t.run.data_folder);
    EXPECT_FALSE(exists("pi5_prv_random.txt"));
}

TEST_F(ExpMrkControl, OpensWithoutRememberingSoEachCallReopensOnTheSameNumber) {
    write_bytes(t.data("Exp_Mrk_control.txt"), QByteArray(88, ' '));
    s.open_exp_mrk_control("E_C", t.run.data_folder);
    const int first = s.table("E_C").file_number;
    EXPECT_EQ(s.series_count(), 2);
    s.plain_close(first);
    EXPECT_TRUE(s.file_in_use(first));  // a plain close keeps the number
    s.open_exp_mrk_control("E_C", t.run.data_folder);
    EXPECT_EQ(s.table("E_C").file_number, first);
    EXPECT_EQ(s.file_folder(first), "");
    s.open_exp_mrk_control("SKL", t.run.data_folder);  // not its code: nothing
    EXPECT_EQ(s.open_file_count(), 1);
}

TEST_F(ExpMrkControl, AMissingFileIsCreatedEmpty) {
    s.open_exp_mrk_control("*", t.run.data_folder);
    EXPECT_EQ(s.series_count(), 0);
    EXPECT_TRUE(exists("exp_mrk_control.txt"));
}

TEST_F(CloseEverything, FreesAllNumbersAndOpensTheSchoolTableAgain) {
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
