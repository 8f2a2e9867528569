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
    // A table as the store holds it: its number, count, and the code and
    // folder its number is remembered for.
    QString state(const QString& code) const {
        const TableVar v = s.table(code);
        const QString held = s.file_code(v.file_number) + " in " + s.file_folder(v.file_number);
        const QString counted = QString("%1: %2 records, ").arg(v.file_number).arg(v.record_count);
        return counted + (held == " in " ? "not remembered" : held);
    }
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
        EXPECT_EQ((QList<int>{number, s.open_file_count()}), (QList<int>{0, 0}));
    }
    int high = 0;
    EXPECT_EQ((QList<int>{s.allocate_file_handle(true), s.allocate_file_handle(true),
                          high = s.allocate_file_handle(false), s.open_file_count()}),
              (QList<int>{11, 12, 101, 3}));
    s.close_table_file(high);
    EXPECT_EQ((QList<int>{high, s.file_in_use(101), s.allocate_file_handle(false)}), (QList<int>{0, 0, 101}));
}

TEST_F(FileNumbers, AnExhaustedLowRangeEndsTheProgramThoughTheHighRangeIsFree) {
    for (int n = 11; n <= 100; ++n) ASSERT_EQ(s.allocate_file_handle(true), n);
    EXPECT_THROW(s.allocate_file_handle(true), ProgramEnd);
    EXPECT_EQ(t.dialogs.texts().value(0), "System error!\r\nAll available File Handles are used!\r\n"
                                          "System will now terminate... Please reload.");
    EXPECT_EQ(t.dialogs.messages.value(0).icon, MsgIcon::Critical);
    EXPECT_FALSE(s.file_in_use(11));  // the close-everything order ran before the end
}

// A missing folder: the message, nothing opened, whether the code is known
// or not; an unknown code in a folder that is there changes nothing.
TEST_F(OpenTable, AMissingFolderShowsTheMessageAndOpensNothing) {
    const QString gone = t.path("nowhere");
    s.open_table("BRP", gone);
    t.run.language_afrikaans = true;
    s.open_table("NOSUCHCODE", gone);
    s.open_table("NOSUCHCODE", t.run.data_folder);
    EXPECT_EQ(t.dialogs.texts(),
              (QStringList{"THE FOLDER " + gone + " DOES NOT EXIST!", "DIE GIDS " + gone + " BESTAAN NIE!"}));
    EXPECT_EQ((QList<int>{s.table("BRP").file_number, s.open_file_count()}), (QList<int>{0, 0}));
}

TEST_F(OpenTable, AVanishedDriveOfTheCheckFolderEndsTheProgram) {
    QTemporaryDir other;
    const QString drive = other.path();
    t.run.drive_root = drive;  // the check folder lies on this "drive"
    other.remove();
    EXPECT_THROW(s.open_table("BRP", t.run.data_folder, drive + "/data"), ProgramEnd);
    EXPECT_EQ(t.dialogs.texts(), QStringList{"NETWORK DRIVE  " + drive +
                                             "  NOT AVAILABLE ...\r\n\r\nCONTACT YOUR NETWORK ADMINISTRATOR !"});
}

TEST_F(OpenTable, ASecondOpenInTheSameFolderKeepsTheNumberAndRewinds) {
    write_bytes(t.data("Brp_Dta_random.txt"), QByteArray(90, 'x'));
    s.open_table("BRP", t.run.data_folder);
    const QString opened = "101: 3 records, BRP in " + t.run.data_folder;
    EXPECT_EQ(state("BRP"), opened);
    RecordLayout whole{{"all", FieldKind::Text, 30}};
    RecordBuffer rec(&whole);
    ASSERT_TRUE(s.read_next(101, rec) && s.read_next(101, rec));
    s.open_table("BRP", t.run.data_folder);
    EXPECT_EQ(state("BRP"), opened);
    ASSERT_TRUE(s.read_next(101, rec));  // record 1 again
    EXPECT_FALSE(s.at_end(101));
}

TEST_F(OpenTable, AnotherFolderFreesTheOldNumberAndTakesTheLowestFree) {
    const QString second = t.path("second");
    QDir().mkpath(second);
    s.open_table("BRP", t.run.data_folder);
    s.allocate_file_handle(false);  // 102 taken by someone else
    s.open_table("BRP", second);
    EXPECT_EQ(state("BRP"), "101: 0 records, BRP in " + second);  // freed, then taken again
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
    EXPECT_EQ(state("BRP"), "101: 0 records, BRP in " + t.path("L26"));
    EXPECT_EQ(t.run.school_folder, t.path("L26"));
    EXPECT_TRUE(QFileInfo::exists(t.path("L26/Brp_Dta_random.txt")));
}

// Steps of single tables: the school additions get an empty first record,
// the symbols their seven standard rows; a runaway log above 2000 records is
// emptied with a box; the promotion rules are made anew when their count is
// odd; the second behaviour file is merged in.
TEST_F(OpenTable, TablesWithTheirOwnStepsOpenAfterThem) {
    write_bytes(t.data("Ppl_add_random.txt"), QByteArray(177 * 2001, 'z'));
    write_bytes(t.data("prm_prom_random.txt"), QByteArray(8 * 12, 'p'));
    write_bytes(t.data("hw2_random.txt"), QByteArray(129, 'a'));
    write_bytes(t.data("gedrag2_random.txt"), QByteArray(129 * 2, 'b'));
    const QStringList codes{"SKLADD", "SKLHB", "PI2", "PPLADD", "PRMPROM", "HW2"};
    QStringList opened;
    for (const QString& code : codes) {
        s.open_table(code, t.run.data_folder);
        opened << code + " " + state(code).replace(t.run.data_folder, "data");
    }
    EXPECT_EQ(opened, (QStringList{"SKLADD 101: 1 records, not remembered", "SKLHB 102: 0 records, not remembered",
                                   "PI2 103: 7 records, PI2 in data", "PPLADD 104: 0 records, PPLADD in data",
                                   "PRMPROM 105: 0 records, PRMPROM in data", "HW2 106: 3 records, HW2 in data"}));
    EXPECT_EQ(t.dialogs.texts(), QStringList{"?"});  // for the runaway log
    EXPECT_EQ(read_bytes(t.data("skl_add_random.txt")), QByteArray(kSchoolAdditionLength, ' '));
    EXPECT_EQ(record_texts(read_bytes(t.data("pi2_random.txt")), symbol_record_layout()),
              (QStringList{"1 |29|0", "2 |39|30", "3 |49|40", "4 |59|50", "5 |69|60", "6 |79|70", "7 |100|80"}));
    EXPECT_EQ((QList<qint64>{size("skl_h_b_random.txt"), size("Ppl_add_random.txt"), size("prm_prom_random.txt")}),
              (QList<qint64>{0, 0, 0}));
    EXPECT_EQ(read_bytes(t.data("hw2_random.txt")), QByteArray(129, 'a') + QByteArray(258, 'b'));
    EXPECT_FALSE(exists("gedrag2_random.txt"));
    write_bytes(t.data("prm_prom_random.txt"), QByteArray(8 * 5, 'p'));  // an even count stays
    s.open_table("PRMPROM", t.path("data"));
    EXPECT_EQ(s.table("PRMPROM").record_count, 5);
}

// Four symbols in the old outcomes years (a year prefix of 4 to 6 before
// 2013), seven otherwise: each side of each bound.
TEST_F(OpenTable, TheSymbolsAreFourInTheOldOutcomesYears) {
    const QStringList four{"1 |34|0", "2 |49|35", "3 |69|50", "4 |100|70"};
    const std::tuple<const char*, const char*, bool> rows[] = {  // year prefix, year, four symbols
        {"3", "2012", false}, {"4", "2012", true}, {"6", "2012", true}, {"7", "2012", false}, {"4", "2013", false}};
    for (const auto& [prefix, year, is_four] : rows) {
        SCOPED_TRACE(std::string(prefix) + " " + year);
        QFile::remove(t.data("pi2_random.txt"));
        t.run.year_prefix = prefix;
        t.run.current_year = year;
        RecordStore(t.run).open_table("PI2", t.run.data_folder);
        const QStringList symbols = record_texts(read_bytes(t.data("pi2_random.txt")), symbol_record_layout());
        EXPECT_EQ(symbols.size(), is_four ? 4 : 7);
        EXPECT_TRUE(!is_four || symbols == four) << symbols.join(' ').toStdString();
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
    EXPECT_TRUE(exists("gsncmp_convert.2016") && exists("gsncmp_convert2.2016"));
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
    EXPECT_EQ(state("E_C"), QString("%1: 2 records, not remembered").arg(first));
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
    EXPECT_EQ((QList<int>{order, s.table("BRP").file_number, s.table("KLS").file_number, s.file_in_use(11)}),
              (QList<int>{RecordStore::kCloseAll, 0, 0, 0}));
    EXPECT_EQ(s.open_file_count(), 1);  // the school table, open again
    EXPECT_EQ(s.table("SKL").file_number, 101);
}

}  // namespace
}  // namespace veldo
