// Learners per symbol and the average per task.
#include <gtest/gtest.h>

#include "exchange/symbol_distribution.h"
#include "store/series.h"
#include "markbook/setup_file.h"
#include "store/record_store.h"
#include "tests/support/golden.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/shell_transcript.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using namespace testing;

struct Symbols : ::testing::Test {
    TempDrive t;
    const QStringList row{"9  ", "NW   ", "80", "9A ", "B  ", "   ", "4", "", ""};
    TextGrid grid;

    void symbols(const QList<QVariantList>& rows) {
        testing::make_table(t.data("pi2_dta.dbf"), symbol_table_fields(), rows);
    }
    void setup(const QList<SetupRow>& rows) {
        MarkBookSetup s;
        for (int i = 0; i < rows.size(); ++i) s.rows[i] = rows[i];
        ASSERT_TRUE(write_setup_file(t.data("setup_9  NW___9A.txt"), s));
    }
};

TEST_F(Symbols, CountsLearnersPerRangeAndAveragesPerTask) {
    symbols({{"7", 100.0, 80.0}, {"", 79.9, 70.0}, {"4", 79.9, 50.0}, {"1", 49.9, 0.0}});
    setup({{"TOETS", "50", "", "", ""}, {"PROJEK", "0", "", "", ""}});
    fill_marks_table(t.data("marks1.dbf"), {marks_row(1, "A", {"40", "100.5"}), marks_row(2, "B", {"40", "45"}),
                                            marks_row(3, "C", {"A", "a"}), marks_row(4, "D", {"", "85"})});
    ASSERT_TRUE(build_symbol_distribution(*t.store, row, 1, grid));
    // 100.5 lies in no range: it counts only for the average. The columns
    // past the named tasks take no room.
    EXPECT_TRUE(testing::matches_golden(testing::grid_text(grid, -1, true), "exchange/symbols_counted.txt"));
    EXPECT_EQ(series_title(row), "9 NW 9A B");
}

TEST_F(Symbols, OverlappingRangesGoToTheFirstAndAnEmptyTaskHasNoAverage) {
    t.run.language_afrikaans = true;
    symbols({{"B", 100.0, 50.0}, {"A", 100.0, 0.0}});
    setup({{"T1", "10", "", "", ""}, {"", "", "", "", ""}, {"T3", "10", "", "", ""}});
    fill_marks_table(t.data("marks1.dbf"), {marks_row(1, "A", {"6", "9", ""})});
    ASSERT_TRUE(build_symbol_distribution(*t.store, row, 1, grid));
    // The walk goes by position: the second column counts field 3, the
    // unnamed row's stray 9, on the total of setup row 2 (blank: as it is).
    EXPECT_TRUE(testing::matches_golden(testing::grid_text(grid), "exchange/symbols_overlapping.txt"));
}

// A mark is counted alike whether its field holds it as text, as text with
// blanks and a NUL after it, or as a number (a table another program wrote).
TEST_F(Symbols, AMarkCountsAlikeWhateverItsFieldHolds) {
    symbols({{"7", 100.0, 80.0}, {"4", 79.9, 50.0}, {"1", 49.9, 0.0}});
    setup({{"TOETS", "50", "", "", ""}, {"PROJEK", "20", "", "", ""}});
    const QString path = t.data("marks1.dbf");
    auto grid_of = [&] {
        TextGrid g;
        EXPECT_TRUE(build_symbol_distribution(*t.store, row, 1, g));
        return testing::grid_text(g);
    };
    fill_marks_table(path, {marks_row(1, "A", {"40", "9.5"}), marks_row(2, "B", {"24.5", "A"})});
    const QString as_text = grid_of();
    fill_marks_table(path, {marks_row(1, "A", {QString::fromUtf8("\u00A040\t"), "9.5"}),
                            marks_row(2, "B", {"24.5", " aX"})});
    QByteArray bytes = testing::read_bytes(path);
    const int header = quint8(bytes[8]) | quint8(bytes[9]) << 8, length = quint8(bytes[10]) | quint8(bytes[11]) << 8;
    bytes[header + length + 1 + 10 + 40 + 6 + 2] = '\0';  // " a\0   ": an absence, what follows the NUL unread
    testing::write_bytes(path, bytes);
    EXPECT_EQ(grid_of(), as_text);
    QList<DbfField> numbers = mark_book_fields();
    for (int f = 2; f < numbers.size(); ++f) numbers[f] = {numbers[f].name, DbfType::Numeric, 6, 1};
    QFile::remove(path);
    testing::make_table(path, numbers, {{1, "A", 40.0, 9.5}, {2, "B", 24.5, QVariant()}});
    EXPECT_EQ(grid_of(), as_text);
    EXPECT_NE(as_text, QString());
}

TEST_F(Symbols, MissingBookOldExportOrSetupEndTheScreen) {
    EXPECT_FALSE(build_symbol_distribution(*t.store, row, 1, grid));
    DbfTable::create(t.data("marks1.dbf"), mark_book_fields().mid(0, 41));
    EXPECT_FALSE(build_symbol_distribution(*t.store, row, 1, grid));
    fill_marks_table(t.data("marks1.dbf"), {});
    EXPECT_FALSE(build_symbol_distribution(*t.store, row, 1, grid));
    // Only the key as built counts here; an older key form does not.
    MarkBookSetup s;
    s.rows[0] = {"T", "10", "", "", ""};
    ASSERT_TRUE(write_setup_file(t.data("setup_9NW9A.txt"), s));
    EXPECT_FALSE(build_symbol_distribution(*t.store, row, 1, grid));
    EXPECT_EQ(t.dialogs.texts(),
              (QStringList{"3 See 'MARK BOOK SETUP' to create mark book",
                           "Load the latest copy of VELDO-CLERK and recreate the \r\n"
                           "export disk to allow for 40 mark sets ...",
                           "1 No ranges available ... see 'MARK BOOK SETUP'",
                           "1 No ranges available ... see 'MARK BOOK SETUP'"}));
}

}  // namespace
}  // namespace veldo
