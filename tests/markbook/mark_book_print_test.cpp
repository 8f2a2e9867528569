// The mark book's report grid and its legend.
#include <gtest/gtest.h>

#include "markbook/mark_book_print.h"
#include "tests/support/mark_book_fixture.h"

namespace veldo {
namespace {

using testing::fill_marks_table;
using testing::marks_row;

struct MarkBookPrint : ::testing::Test {
    QTemporaryDir dir;
    MarkBookSetup setup;
    TextGrid grid;
    std::unique_ptr<DbfTable> table(const QList<QStringList>& rows) {
        fill_marks_table(dir.filePath("marks1.dbf"), rows);
        return DbfTable::open(dir.filePath("marks1.dbf"));
    }
};

TEST_F(MarkBookPrint, HeadingsTotalsAndRowsInBothLanguages) {
    setup.rows[0] = {"TOETS 1", " 50 ", "3", "", ""};
    setup.rows[1] = {"TOETS 2", "50", "3", "", ""};
    setup.rows[2] = {"TOTAAL", "100", "", "", ""};
    auto t = table({marks_row(10002, "Nel, Jan", {"40", "A", "70.0"}), marks_row(10001, "Botha, Anri", {"", "35"})});
    fill_print_grid(grid, setup, *t, true);
    EXPECT_EQ(grid.cols(), 43);
    EXPECT_EQ(grid.fixed_rows(), 1);
    EXPECT_EQ(grid.row_texts(0).mid(0, 7), (QStringList{"NR", "  T.NR", "LEERDER", "P1", "P2", "P3", ""}));
    EXPECT_EQ(grid.column_alignment(1), GridAlign::Centre);
    EXPECT_EQ(grid.column_alignment(3), GridAlign::Left);
    EXPECT_EQ(grid.row_texts(1).mid(0, 6), (QStringList{"", "", "", "50", "50", "100"}));
    EXPECT_EQ(grid.row_texts(2).mid(0, 6), (QStringList{"1", "10002", "Nel, Jan", "40", "A", "70.0"}));
    EXPECT_EQ(grid.row_texts(3).mid(0, 5), (QStringList{"2", "10001", "Botha, Anri", "", "35"}));
    // The learner, a named row, an unnamed one and the last.
    EXPECT_EQ((QList<int>{grid.col_width(2), grid.col_width(5), grid.col_width(6), grid.col_width(42)}),
              (QList<int>{kPrintLearnerWidth, kPrintMarkWidth, 0, 0}));

    fill_print_grid(grid, setup, *t, false);
    EXPECT_EQ(grid.row_texts(0).mid(0, 4), (QStringList{"NO", "  A.NO", "LEARNER", "M1"}));
}

TEST_F(MarkBookPrint, AGapLeavesNoHeadingAndNoWidth) {
    setup.rows[0] = {"T1", "10", "", "", ""};
    setup.rows[2] = {"T3", "10", "", "", ""};
    auto t = table({marks_row(1, "A", {"5", "9", "6"})});
    fill_print_grid(grid, setup, *t, false);
    EXPECT_EQ(grid.row_texts(0).mid(3, 3), (QStringList{"M1", "", "M3"}));
    EXPECT_EQ((QList<int>{grid.col_width(4), grid.col_width(5)}), (QList<int>{0, kPrintMarkWidth}));
    EXPECT_EQ(grid.row_texts(2).mid(3, 3), (QStringList{"5", "9", "6"}));
}

TEST_F(MarkBookPrint, TheSortFlagSortsColumnTwoNumericallyDescending) {
    setup.rows[0] = {"T1", "10", "", "", ""};
    auto t = table({marks_row(1, "B", {"5"}), marks_row(2, "A", {"9"})});
    fill_print_grid(grid, setup, *t, false, true);
    // Names read as 0: the order stays as the table had it.
    EXPECT_EQ(grid.text(2, 2), "B");
    EXPECT_EQ(grid.col(), 2);
}

TEST_F(MarkBookPrint, TheLegendPutsFourNamesToALine) {
    for (int r = 0; r < 5; ++r) setup.rows[r] = {QString("TAAK %1").arg(r + 1), "10", "", "", ""};
    auto t = table({});
    fill_print_grid(grid, setup, *t, true);
    const QStringList legend = mark_book_legend(grid, setup, true, 80);
    ASSERT_EQ(legend.size(), 2);
    EXPECT_EQ(legend[0], "P1 TAAK 1           P2 TAAK 2           P3 TAAK 3           P4 TAAK 4           ");
    EXPECT_EQ(legend[1], "P5 TAAK 5           ");
}

TEST(SetupGridPrint, HoldsTheFortyRowsWithTotalsInPaleYellow) {
    MarkBookSetup setup;
    apply_example_book(setup, false);
    TextGrid grid;
    fill_setup_grid(grid, setup, false);
    EXPECT_EQ(grid.rows(), 41);
    EXPECT_EQ(grid.row_texts(0), (QStringList{"NO.", " TASK/PROJECT            ", " TOTAL  ", "   RESULT   ",
                                              " OUT  OF ", " CYCLE NAME "}));
    EXPECT_EQ(grid.column_alignment(2), GridAlign::Centre);
    EXPECT_EQ(grid.row_texts(5), (QStringList{"5", "CLASS WORK", "40", "11", "40", ""}));
    EXPECT_EQ(grid.cell_back_colour(5, 1), 0xC0FFFF);
    EXPECT_EQ(grid.cell_back_colour(1, 1), 0xFFFFFF);
    EXPECT_EQ(grid.row_texts(40), (QStringList{"40", "", "", "", "", ""}));
    EXPECT_EQ(grid.col_width(1), 4500);
    EXPECT_EQ(setup_print_title(true), "PUNTEBOEK OPSTELLING");
}

}  // namespace
}  // namespace veldo
