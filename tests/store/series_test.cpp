// The mark series table: its grid rows, keys and lists.
#include <gtest/gtest.h>

#include "store/series.h"
#include "tests/support/series_file.h"
#include "tests/support/temp_drive.h"
#include "util/text_grid.h"

namespace veldo {
namespace {

using testing::SeriesEntry;
using testing::TempDrive;
using testing::series_record;
using testing::write_bytes;

// A drive whose series file holds the given records.
struct SeriesFile : ::testing::Test {
    TempDrive t;
    void write(const QList<SeriesEntry>& entries) {
        QByteArray bytes;
        for (const SeriesEntry& entry : entries) bytes += series_record(entry);
        write_bytes(t.data("exp_mrk_control.txt"), bytes);
    }
};
using SeriesRows = SeriesFile;
using MarkList = SeriesFile;
using ClassLists = SeriesFile;

// Each field at its offset: texts as they are, the total a single, the number
// 16 bits, the date a double of days (46036), least significant byte first.
TEST(SeriesLayout, IsFortyFourBytesWithFieldsAtTheirOffsets) {
    EXPECT_EQ(series_record({"12 ", "EN HL", 75.5f, "12A", "B  ", "G1 ", 258, "K1", QDate(2026, 1, 14)}),
              "12 EN HL" + QByteArray::fromHex("00009742") + "12AB  G1 " + QByteArray::fromHex("0201") + "K1   " +
                  QByteArray::fromHex("00000000807ae640") + QByteArray(8, ' '));
}

TEST_F(SeriesRows, HoldTheNineColumnsUntrimmedWithTotal100AboveGrade9) {
    write({{"12 ", "GES  ", 400, "12A", "   ", "   ", 7, "K7", QDate(2026, 1, 14)},
           {"9  ", "NW   ", 80, "   ", "   ", "N1 ", 4, "K4", QDate(2026, 1, 14)},
           {"R  ", "AFR  ", 62.5f, "RA ", "   ", "   ", 0, "", QDate()}});
    EXPECT_EQ(series_rows(*t.store), (QList<QStringList>{
                                         {"12 ", "GES  ", "100", "12A", "   ", "   ", "7", "K7   ", "2026/01/14"},
                                         {"9  ", "NW   ", "80", "   ", "   ", "N1 ", "4", "K4   ", "2026/01/14"},
                                         {"R  ", "AFR  ", "62.5", "RA ", "   ", "   ", "0", "     ", "00:00:00"}}));
}

TEST_F(SeriesRows, AnEmptyOrMissingTableGivesNoRows) {
    write({});
    EXPECT_TRUE(series_rows(*t.store).isEmpty());
    QFile::remove(t.data("exp_mrk_control.txt"));
    EXPECT_TRUE(series_rows(*t.store).isEmpty());
}

TEST_F(SeriesRows, AShortLastRecordIsCountedAndReadWithBlanksMissing) {
    const QByteArray one = series_record({"10 ", "WISK ", 300, "10A", "", "", 5, "", {}});
    write_bytes(t.data("exp_mrk_control.txt"), one + one.left(22));  // 66 bytes: 1.5 records
    const auto rows = series_rows(*t.store);
    EXPECT_EQ(rows.size(), 2);
    EXPECT_EQ(rows.value(1).mid(0, 3), (QStringList{"10 ", "WISK ", "100"}));
}

TEST_F(SeriesRows, FillTheGridWithoutAHeadingRow) {
    write({{"8  ", "AFR  ", 100, "8A ", "", "", 1, "", {}}});
    TextGrid grid;
    fill_series_grid(*t.store, grid);
    EXPECT_EQ((QList<int>{grid.rows(), grid.cols(), grid.fixed_rows()}), (QList<int>{1, 9, 0}));
    EXPECT_EQ(grid.text(0, 1), "AFR  ");
}

TEST_F(ClassLists, ListsClassesOrGroupsJoinedByCommas) {
    write({{"8  ", "AFR  ", 100, "8A ", "", "", 1, "", {}}, {"9  ", "NW   ", 80, "   ", "", "N1 ", 2, "", {}},
           {"9  ", "NW   ", 80, "   ", "", "   ", 3, "", {}}});
    const ClassList list = class_list(*t.store);
    EXPECT_EQ(list.items + QStringList{list.joined}, (QStringList{"8A", "N1", "8A, N1"}));
}

TEST(SeriesKey, TakesClassElseGroupAndKeepsTheGradePadding) {
    EXPECT_EQ(series_key({"10 ", "WISK ", "", "10A", "", ""}), "10 WISK_10A");
    EXPECT_EQ(series_key({"9  ", "NW   ", "", "   ", "", "B1 "}), "9  NW___B1");
    EXPECT_EQ(series_key({"11 ", "EN HL", "", "11B", "", ""}), "11 EN_HL11B");
    EXPECT_EQ(series_key({"9  ", "AFR  ", "", "9/A", "", ""}), "9  AFR__9_A");
    EXPECT_EQ(series_key({"   ", "     ", "", "   ", "", "   "}), "_____");
}

TEST_F(MarkList, PutsTheGroupBeforeTheClassAndCutsTheClassPart) {
    write({{"10 ", "WISK ", 300, "10 ", "A  ", "   ", 1, "", {}}, {"9", "NW", 80, "9A ", "   ", "B1 ", 2, "", {}},
           {"12 ", "GES  ", 400, "12A", "   ", "   ", 3, "", {}}});
    QStringList texts;  // with the total as stored, not 100 above grade 9
    for (const auto& item : mark_list_items(*t.store)) texts << item.text + " | " + item.total;
    EXPECT_EQ(texts, (QStringList{"  10 WISK  10  | 300", "   9 NW    B1  | 80", "  12 GES   12A | 400"}));
}

TEST(MarksFiles, EitherControlFileKeepsTheEntryOpen) {
    TempDrive t;
    EXPECT_FALSE(has_marks_files(t.run.data_folder));
    write_bytes(t.data("EXP_CONTROL.DBF"), "x");
    EXPECT_TRUE(has_marks_files(t.run.data_folder));
    QFile::remove(t.data("EXP_CONTROL.DBF"));
    write_bytes(t.data("exp_mrk_control.txt"), {});
    EXPECT_TRUE(has_marks_files(t.run.data_folder));
}

}  // namespace
}  // namespace veldo
