// The mark book's report grid and its legend.
#include <gtest/gtest.h>

#include "markbook/mark_book_print.h"
#include "tests/support/golden.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

using testing::grid_text;
using testing::marks_row;

struct MarkBookPrint : ::testing::Test, testing::MarksFile {
    TextGrid grid;
};

// Each grid one row a line with every column's width: Afrikaans, English,
// then a gap among the rows, which has no heading and no width.
TEST_F(MarkBookPrint, HeadingsTotalsRowsAndWidthsInBothLanguages) {
    setup.rows[0] = {"TOETS 1", " 50 ", "3", "", ""};
    setup.rows[1] = {"TOETS 2", "50", "3", "", ""};
    setup.rows[2] = {"TOTAAL", "100", "", "", ""};
    auto t = book({marks_row(10002, "Nel, Jan", {"40", "A", "70.0"}), marks_row(10001, "Botha, Anri", {"", "35"})});
    fill_print_grid(grid, setup, *t, true);
    EXPECT_EQ(grid.fixed_rows(), 1);
    EXPECT_EQ((QList<GridAlign>{grid.column_alignment(1), grid.column_alignment(3)}),
              (QList<GridAlign>{GridAlign::Centre, GridAlign::Left}));
    QString grids = grid_text(grid, -1, true);
    fill_print_grid(grid, setup, *t, false);
    grids += grid_text(grid, -1, true);
    EXPECT_TRUE(testing::matches_golden(grids, "markbook/print_grid.txt"));

    setup = MarkBookSetup();
    setup.rows[0] = {"T1", "10", "", "", ""};
    setup.rows[2] = {"T3", "10", "", "", ""};
    t = book({marks_row(1, "A", {"5", "9", "6"})});
    fill_print_grid(grid, setup, *t, false);
    EXPECT_TRUE(testing::matches_golden(grid_text(grid, -1, true), "markbook/print_grid_gap.txt"));
}

TEST_F(MarkBookPrint, TheSortFlagSortsColumnTwoNumericallyDescending) {
    setup.rows[0] = {"T1", "10", "", "", ""};
    auto t = book({marks_row(1, "B", {"5"}), marks_row(2, "A", {"9"})});
    fill_print_grid(grid, setup, *t, false, true);
    // Names read as 0: the order stays as the table had it.
    EXPECT_EQ(grid.text(2, 2), "B");
    EXPECT_EQ(grid.col(), 2);
}

TEST_F(MarkBookPrint, TheLegendPutsFourNamesToALine) {
    for (int r = 0; r < 5; ++r) setup.rows[r] = {QString("TAAK %1").arg(r + 1), "10", "", "", ""};
    auto t = book({});
    fill_print_grid(grid, setup, *t, true);
    EXPECT_EQ(mark_book_legend(grid, setup, true, 80),
              (QStringList{"P1 TAAK 1           P2 TAAK 2           P3 TAAK 3           P4 TAAK 4           ",
                           "P5 TAAK 5           "}));
}

// The forty rows with the totals in pale yellow, and the widths.
TEST(SetupGridPrint, HoldsTheFortyRowsWithTotalsInPaleYellow) {
    MarkBookSetup setup;
    apply_example_book(setup, false);
    TextGrid grid;
    fill_setup_grid(grid, setup, false);
    EXPECT_EQ(grid.column_alignment(2), GridAlign::Centre);
    EXPECT_EQ(setup_print_title(true), "PUNTEBOEK OPSTELLING");
    EXPECT_TRUE(testing::matches_golden(grid_text(grid, 1, true), "markbook/setup_grid.txt"));
}

}  // namespace
}  // namespace veldo
