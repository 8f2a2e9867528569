#include "util/text_grid.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace veldo;

namespace {

// The texts of one column below the fixed rows.
QStringList column(const TextGrid& g, int col) {
    QStringList out;
    for (int r = g.fixed_rows(); r < g.rows(); ++r) out << g.text(r, col);
    return out;
}

TextGrid grid_with(const QStringList& items, int cols = 3) {
    TextGrid g(1, cols);
    for (const QString& item : items) g.add_item(item);
    return g;
}

}  // namespace

// ---- Shape --------------------------------------------------------------------

TEST(TextGridShape, StartsLikeTheControl) {
    TextGrid g;
    EXPECT_EQ(g.rows(), 2);
    EXPECT_EQ(g.cols(), 2);
    EXPECT_EQ(g.fixed_rows(), 1);
    EXPECT_EQ(g.fixed_cols(), 1);
    EXPECT_EQ(g.text(1, 1), QString());
}

TEST(TextGridShape, GrowingKeepsTextShrinkingCuts) {
    TextGrid g(3, 3);
    g.set_text(2, 2, QStringLiteral("x"));
    g.set_text(1, 1, QStringLiteral("y"));
    g.set_rows(10);
    g.set_cols(5);
    EXPECT_EQ(g.text(2, 2), QStringLiteral("x"));
    EXPECT_EQ(g.text(9, 4), QString());
    g.set_rows(2);
    g.set_cols(2);
    EXPECT_EQ(g.rows(), 2);
    EXPECT_EQ(g.text(1, 1), QStringLiteral("y"));
    EXPECT_EQ(g.text(2, 2), QString());
    g.set_rows(3);
    EXPECT_EQ(g.text(2, 1), QString());  // a cut row comes back empty
}

TEST(TextGridShape, FixedCountsFollowTheShape) {
    TextGrid g(5, 5);
    g.set_fixed_rows(0);
    g.set_fixed_cols(0);
    EXPECT_EQ(g.fixed_rows(), 0);
    g.set_fixed_rows(9);
    EXPECT_EQ(g.fixed_rows(), 5);
    g.set_rows(2);
    EXPECT_EQ(g.fixed_rows(), 2);
}

TEST(TextGridShape, OutsideTheGridReadsEmptyAndWritesNothing) {
    TextGrid g(2, 2);
    g.set_text(5, 5, QStringLiteral("lost"));
    g.set_text(-1, 0, QStringLiteral("lost"));
    EXPECT_EQ(g.text(5, 5), QString());
    EXPECT_EQ(g.rows(), 2);
    EXPECT_FALSE(g.contains(2, 0));
}

// ---- Items --------------------------------------------------------------------

TEST(TextGridItems, AddItemSplitsAtTabsFromColumnZero) {
    TextGrid g(1, 3);
    g.add_item(QStringLiteral("1\t1234\tJan\textra"));
    ASSERT_EQ(g.rows(), 2);
    EXPECT_EQ(g.row_texts(1), (QStringList{QStringLiteral("1"), QStringLiteral("1234"), QStringLiteral("Jan")}));
}

TEST(TextGridItems, AddItemAtAnIndexInserts) {
    TextGrid g = grid_with({QStringLiteral("a"), QStringLiteral("c")}, 1);
    g.add_item(QStringLiteral("b"), 2);
    g.add_item(QStringLiteral("z"), 99);
    EXPECT_EQ(column(g, 0), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                                         QStringLiteral("z")}));
}

TEST(TextGridItems, RemoveItemTakesTheRowOut) {
    TextGrid g = grid_with({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}, 1);
    EXPECT_TRUE(g.remove_item(1));
    EXPECT_EQ(column(g, 0), (QStringList{QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_FALSE(g.remove_item(7));
    EXPECT_EQ(g.rows(), 3);
}

TEST(TextGridItems, RemovingAFixedRowLowersTheFixedCount) {
    TextGrid g(3, 1);
    g.set_fixed_rows(2);
    g.remove_item(0);
    EXPECT_EQ(g.fixed_rows(), 1);
}

TEST(TextGridItems, ClearEmptiesTextsAndColoursButKeepsShape) {
    TextGrid g(3, 3);
    g.set_text(1, 1, QStringLiteral("x"));
    g.set_col_width(2, 4000);
    g.set_cell_back_colour(1, 1, 0x00FFFF);
    g.set_cell_bold(1, 1, true);
    g.clear();
    EXPECT_EQ(g.rows(), 3);
    EXPECT_EQ(g.cols(), 3);
    EXPECT_EQ(g.text(1, 1), QString());
    EXPECT_EQ(g.col_width(2), 4000);
    EXPECT_EQ(g.cell_back_colour(1, 1), TextGrid::kWhite);
    EXPECT_FALSE(g.cell_bold(1, 1));
}

// ---- Clip ----------------------------------------------------------------------

TEST(TextGridClip, PastesABlockOfClipboardText) {
    TextGrid g(5, 2);
    g.set_fixed_rows(0);
    g.set_clip(0, 0, 4, 0, QStringLiteral("12\r\n7.5\r\nA\r\n"));
    EXPECT_EQ(g.text(0, 0), QStringLiteral("12"));
    EXPECT_EQ(g.text(1, 0), QStringLiteral("7.5"));
    EXPECT_EQ(g.text(2, 0), QStringLiteral("A"));
    EXPECT_EQ(g.text(3, 0), QString());
    EXPECT_EQ(g.text(0, 1), QString());  // outside the chosen block
}

TEST(TextGridClip, ReadsABlockWithTabsAndCarriageReturns) {
    TextGrid g(3, 2);
    g.set_text(1, 0, QStringLiteral("a"));
    g.set_text(1, 1, QStringLiteral("b"));
    g.set_text(2, 0, QStringLiteral("c"));
    EXPECT_EQ(g.clip(1, 0, 2, 1), QStringLiteral("a\tb\rc\t"));
}

// ---- FormatString -----------------------------------------------------------------

TEST(TextGridFormatString, HeadingsAndAlignments) {
    TextGrid g(2, 2);
    g.set_format_string(QStringLiteral("<NR|^  T.NR|<LEERDER|>  PUNT|PS/VO|>  TOTAAL|"));
    EXPECT_EQ(g.cols(), 7);
    EXPECT_EQ(g.text(0, 0), QStringLiteral("NR"));
    EXPECT_EQ(g.text(0, 1), QStringLiteral("  T.NR"));
    EXPECT_EQ(g.text(0, 4), QStringLiteral("PS/VO"));
    EXPECT_EQ(g.text(0, 5), QStringLiteral("  TOTAAL"));
    EXPECT_EQ(g.column_alignment(0), GridAlign::Left);
    EXPECT_EQ(g.column_alignment(1), GridAlign::Centre);
    EXPECT_EQ(g.column_alignment(3), GridAlign::Right);
    EXPECT_EQ(g.column_alignment(4), GridAlign::General);
}

TEST(TextGridFormatString, NeverLowersTheColumnCount) {
    TextGrid g(2, 10);
    g.set_format_string(QStringLiteral("^A|>B"));
    EXPECT_EQ(g.cols(), 10);
    EXPECT_EQ(g.text(0, 1), QStringLiteral("B"));
}

TEST(TextGridFormatString, RowHeadingsAfterASemicolon) {
    TextGrid g(2, 2);
    g.set_format_string(QStringLiteral("|Kol;|Ry 1|Ry 2|Ry 3"));
    EXPECT_EQ(g.rows(), 4);
    EXPECT_EQ(g.text(0, 1), QStringLiteral("Kol"));
    EXPECT_EQ(g.text(2, 0), QStringLiteral("Ry 2"));
    EXPECT_EQ(g.text(3, 0), QStringLiteral("Ry 3"));
}

TEST(TextGridFormatString, WithoutFixedRowsOnlyAlignmentsChange) {
    TextGrid g(2, 2);
    g.set_fixed_rows(0);
    g.set_text(0, 0, QStringLiteral("data"));
    g.set_format_string(QStringLiteral(">X|<Y"));
    EXPECT_EQ(g.text(0, 0), QStringLiteral("data"));
    EXPECT_EQ(g.column_alignment(0), GridAlign::Right);
}

// ---- Widths and colours ----------------------------------------------------------------

TEST(TextGridLooks, WidthsColoursAndBoldness) {
    TextGrid g(3, 3);
    EXPECT_EQ(g.col_width(1), -1);
    g.set_col_width(1, 2500);
    EXPECT_EQ(g.col_width(1), 2500);
    EXPECT_EQ(g.col_width(9), -1);
    EXPECT_EQ(g.cell_back_colour(2, 2), 0xFFFFFF);
    EXPECT_FALSE(g.cell_has_own_colours(2, 2));
    g.set_cell_back_colour(2, 2, 0x0000FF);
    EXPECT_EQ(g.cell_back_colour(2, 2), 0x0000FF);
    EXPECT_TRUE(g.cell_has_own_colours(2, 2));
    EXPECT_EQ(g.cell_back_colour(2, 1), 0xFFFFFF);
    g.set_cell_bold(1, 0, true);
    EXPECT_TRUE(g.cell_bold(1, 0));
    g.set_cols(5);  // a row with styles grows with the grid
    EXPECT_EQ(g.cell_back_colour(2, 4), 0xFFFFFF);
    EXPECT_EQ(g.cell_back_colour(2, 2), 0x0000FF);
}

// ---- Sort -------------------------------------------------------------------------------

TEST(TextGridSort, GenericAscendingNumbersByValueTextsIgnoringCase) {
    TextGrid g = grid_with({QStringLiteral("10"), QStringLiteral("9"), QStringLiteral("2.5")}, 1);
    g.sort(0, GridSort::GenericAscending);
    EXPECT_EQ(column(g, 0), (QStringList{QStringLiteral("2.5"), QStringLiteral("9"), QStringLiteral("10")}));

    TextGrid names = grid_with({QStringLiteral("smit"), QStringLiteral("Botha"), QStringLiteral("de Wet")}, 1);
    names.sort(0, GridSort::GenericAscending);
    EXPECT_EQ(column(names, 0),
              (QStringList{QStringLiteral("Botha"), QStringLiteral("de Wet"), QStringLiteral("smit")}));
}

TEST(TextGridSort, GenericDescending) {
    TextGrid g = grid_with({QStringLiteral("5"), QStringLiteral("40"), QStringLiteral("12")}, 1);
    g.sort(0, GridSort::GenericDescending);
    EXPECT_EQ(column(g, 0), (QStringList{QStringLiteral("40"), QStringLiteral("12"), QStringLiteral("5")}));
}

TEST(TextGridSort, NumericSortsReadByVal) {
    TextGrid g = grid_with({QStringLiteral("7.5"), QStringLiteral("A"), QStringLiteral("12"), QStringLiteral("")}, 1);
    g.sort(0, GridSort::NumericDescending);
    EXPECT_EQ(column(g, 0),
              (QStringList{QStringLiteral("12"), QStringLiteral("7.5"), QStringLiteral("A"), QStringLiteral("")}));
    g.sort(0, GridSort::NumericAscending);
    EXPECT_EQ(column(g, 0),
              (QStringList{QStringLiteral("A"), QStringLiteral(""), QStringLiteral("7.5"), QStringLiteral("12")}));
}

TEST(TextGridSort, StringSortsWithAndWithoutCase) {
    TextGrid g = grid_with({QStringLiteral("b"), QStringLiteral("B"), QStringLiteral("a"), QStringLiteral("10"),
                            QStringLiteral("9")}, 1);
    g.sort(0, GridSort::StringAscending);
    EXPECT_EQ(column(g, 0), (QStringList{QStringLiteral("10"), QStringLiteral("9"), QStringLiteral("B"),
                                         QStringLiteral("a"), QStringLiteral("b")}));
    g.sort(0, GridSort::StringDescending);
    EXPECT_EQ(column(g, 0), (QStringList{QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("B"),
                                         QStringLiteral("9"), QStringLiteral("10")}));
    g.sort(0, GridSort::StringNoCaseAscending);
    // "b" and "B" are equal ignoring case and keep their order.
    EXPECT_EQ(column(g, 0), (QStringList{QStringLiteral("10"), QStringLiteral("9"), QStringLiteral("a"),
                                         QStringLiteral("b"), QStringLiteral("B")}));
}

TEST(TextGridSort, StableSoEqualMarksStayInNameOrder) {
    // Rank order: names first, then marks highest first.
    TextGrid g(1, 4);
    g.add_item(QStringLiteral("1\t300\tVenter\t55"));
    g.add_item(QStringLiteral("2\t100\tBotha\t70"));
    g.add_item(QStringLiteral("3\t200\tAdams\t55"));
    g.add_item(QStringLiteral("4\t400\tNel\t70"));
    g.sort(2, GridSort::StringAscending);
    g.sort(3, GridSort::NumericDescending);
    EXPECT_EQ(column(g, 2), (QStringList{QStringLiteral("Botha"), QStringLiteral("Nel"), QStringLiteral("Adams"),
                                         QStringLiteral("Venter")}));
    EXPECT_EQ(column(g, 1), (QStringList{QStringLiteral("100"), QStringLiteral("400"), QStringLiteral("200"),
                                         QStringLiteral("300")}));
}

TEST(TextGridSort, FixedRowsStayAndStylesMoveWithTheirRows) {
    TextGrid g(1, 2);
    g.set_text(0, 0, QStringLiteral("heading"));
    g.add_item(QStringLiteral("b\t2"));
    g.add_item(QStringLiteral("a\t1"));
    g.set_cell_back_colour(1, 1, 0x00FF00);
    g.set_row_height(1, 300);
    g.sort(0, GridSort::GenericAscending);
    EXPECT_EQ(g.text(0, 0), QStringLiteral("heading"));
    EXPECT_EQ(g.text(1, 0), QStringLiteral("a"));
    EXPECT_EQ(g.cell_back_colour(2, 1), 0x00FF00);
    EXPECT_EQ(g.row_height(2), 300);
    EXPECT_EQ(g.cell_back_colour(1, 1), TextGrid::kWhite);
}

TEST(TextGridSort, OverAColumnRangeLeftToRight) {
    TextGrid g(0, 2);
    g.add_item(QStringLiteral("x\t2"));
    g.add_item(QStringLiteral("x\t1"));
    g.add_item(QStringLiteral("a\t3"));
    g.sort(0, 1, GridSort::GenericAscending);
    EXPECT_EQ(g.clip(0, 0, 2, 1), QStringLiteral("a\t3\rx\t1\rx\t2"));
}

TEST(TextGridSort, MixedNumbersAndTextsNeverBreakTheSort) {
    // Generic order is not transitive over "10", "9" and "1a".
    QStringList items;
    for (int i = 0; i < 600; ++i)
        items << (i % 3 == 0 ? QString::number(i) : i % 3 == 1 ? QString::number(i) + QStringLiteral("a")
                                                                : QStringLiteral("z%1").arg(i));
    TextGrid g = grid_with(items, 1);
    g.sort(0, GridSort::GenericAscending);
    EXPECT_EQ(g.rows(), 601);
    QStringList after = column(g, 0);
    after.sort();
    items.sort();
    EXPECT_EQ(after, items);
}

TEST(TextGridSort, TwoThousandRowsSortQuickly) {
    TextGrid g(1, 3);
    for (int i = 0; i < 2000; ++i)
        g.add_item(QStringLiteral("%1\tLeerder %2\t%3").arg(i).arg((i * 7919) % 2000).arg((i * 31) % 101));
    QElapsedTimer t;
    t.start();
    g.sort(1, GridSort::GenericAscending);
    g.sort(2, GridSort::NumericDescending);
    EXPECT_LT(t.elapsed(), 500);
    for (int r = 2; r < g.rows(); ++r) ASSERT_GE(g.text(r - 1, 2).toInt(), g.text(r, 2).toInt());
}
