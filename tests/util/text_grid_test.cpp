#include "util/text_grid.h"

#include <random>

#include <gtest/gtest.h>

using namespace veldo;

namespace {

// The texts of one column below the fixed rows.
QStringList column(const TextGrid& g, int col) {
    QStringList out;
    for (int r = g.fixed_rows(); r < g.rows(); ++r) out << g.text(r, col);
    return out;
}

// The whole grid on a line: rows x columns, fixed rows/columns, then each
// row's cells between bars, the rows parted by " / ".
QString described(const TextGrid& g) {
    QStringList rows;
    for (int r = 0; r < g.rows(); ++r) rows << g.row_texts(r).join('|');
    return QString("%1x%2 fixed %3/%4: ").arg(g.rows()).arg(g.cols()).arg(g.fixed_rows()).arg(g.fixed_cols()) +
           rows.join(" / ");
}

TextGrid grid_with(const QStringList& items, int cols = 3) {
    TextGrid g(1, cols);
    for (const QString& item : items) g.add_item(item);
    return g;
}

}  // namespace

// A new grid starts as the control does. Growing keeps the texts, shrinking
// cuts them; the fixed counts follow; outside the grid reads empty and writes
// nothing.
TEST(TextGridShape, StartsLikeTheControlGrowsKeepingTextsAndShrinksCuttingThem) {
    QStringList seen{described(TextGrid())};
    TextGrid g(3, 3);
    g.set_text(2, 2, "x");
    g.set_text(1, 1, "y");
    g.set_rows(5);
    g.set_cols(4);
    seen << described(g);
    g.set_rows(2);
    g.set_cols(2);
    g.set_text(5, 5, "lost");
    g.set_text(-1, 0, "lost");
    const QString outside = QString(", has 2,0: %1, at 5,5: [%2]").arg(g.contains(2, 0) ? "yes" : "no", g.text(5, 5));
    seen << described(g) + outside;
    g.set_rows(3);
    seen << described(g);  // a cut row comes back empty
    TextGrid f(3, 3);
    f.set_fixed_rows(0);
    f.set_fixed_cols(0);
    f.set_fixed_rows(9);  // clamped to the rows there are
    seen << described(f);
    f.set_rows(2);
    seen << described(f);
    EXPECT_EQ(seen, (QStringList{"2x2 fixed 1/1: | / |", "5x4 fixed 1/1: ||| / |y|| / ||x| / ||| / |||",
                                 "2x2 fixed 1/1: | / |y, has 2,0: no, at 5,5: []", "3x2 fixed 1/1: | / |y / |",
                                 "3x3 fixed 3/0: || / || / ||", "2x3 fixed 2/0: || / ||"}));
}

TEST(TextGridItems, AddAndRemoveItemsByRow) {
    TextGrid g(1, 3);
    g.add_item("1\t1234\tJan\textra");  // split at tabs from column 0
    EXPECT_EQ(described(g), "2x3 fixed 1/1: || / 1|1234|Jan");

    TextGrid list = grid_with({"a", "c"}, 1);
    list.add_item("b", 2);
    list.add_item("z", 99);
    EXPECT_EQ(column(list, 0), (QStringList{"a", "b", "c", "z"}));
    EXPECT_TRUE(list.remove_item(1));
    EXPECT_FALSE(list.remove_item(7));
    EXPECT_EQ(described(list), "4x1 fixed 1/1:  / b / c / z");

    TextGrid fixed(3, 1);
    fixed.set_fixed_rows(2);
    fixed.remove_item(0);
    EXPECT_EQ(fixed.fixed_rows(), 1);  // removing a fixed row lowers the count
}

// Clear empties texts, colours and boldness but keeps the shape and the widths.
TEST(TextGridLooks, WidthsColoursAndBoldnessAndWhatClearKeeps) {
    TextGrid g(3, 3);
    g.set_col_width(1, 2500);
    EXPECT_EQ((QList<int>{g.col_width(0), g.col_width(1), g.col_width(9)}), (QList<int>{-1, 2500, -1}));
    EXPECT_EQ(g.cell_back_colour(2, 2), TextGrid::kWhite);
    EXPECT_FALSE(g.cell_has_own_colours(2, 2));
    g.set_cell_back_colour(2, 2, 0x0000FF);
    EXPECT_TRUE(g.cell_has_own_colours(2, 2));
    EXPECT_EQ(g.cell_back_colour(2, 1), TextGrid::kWhite);
    g.set_cell_bold(1, 0, true);
    g.set_cols(5);  // a row with styles grows with the grid
    EXPECT_EQ((QList<int>{g.cell_back_colour(2, 4), g.cell_back_colour(2, 2)}), (QList<int>{TextGrid::kWhite, 0xFF}));

    g.set_text(1, 1, "x");
    g.clear();
    EXPECT_EQ(described(g), "3x5 fixed 1/1: |||| / |||| / ||||");
    EXPECT_EQ(g.col_width(1), 2500);
    EXPECT_EQ(g.cell_back_colour(2, 2), TextGrid::kWhite);
    EXPECT_FALSE(g.cell_bold(1, 0));
}

TEST(TextGridClip, PastesAndReadsBlocksOfClipboardText) {
    TextGrid g(5, 2);
    g.set_fixed_rows(0);
    g.set_clip(0, 0, 4, 0, "12\r\n7.5\r\nA\r\n");
    EXPECT_EQ(described(g), "5x2 fixed 0/1: 12| / 7.5| / A| / | / |");  // column 1 lies outside the block
    g.set_text(1, 1, "b");
    EXPECT_EQ(g.clip(1, 0, 2, 1), "7.5\tb\rA\t");
}

// Headings of row 0 with their alignments; never fewer columns than before;
// row headings after a semicolon; without fixed rows only alignments change.
TEST(TextGridFormatString, HeadingsAndAlignments) {
    TextGrid g(2, 2), wide(2, 10), rows(2, 2), bare(2, 2);
    g.set_format_string("<NR|^  T.NR|<LEERDER|>  PUNT|PS/VO|>  TOTAAL|");
    const QList<GridAlign> aligns{g.column_alignment(0), g.column_alignment(1), g.column_alignment(3),
                                  g.column_alignment(4)};
    EXPECT_EQ(aligns, (QList<GridAlign>{GridAlign::Left, GridAlign::Centre, GridAlign::Right, GridAlign::General}));
    wide.set_format_string("^A|>B");
    rows.set_format_string("|Kol;|Ry 1|Ry 2|Ry 3");
    bare.set_fixed_rows(0);
    bare.set_text(0, 0, "data");
    bare.set_format_string(">X|<Y");
    EXPECT_EQ(bare.column_alignment(0), GridAlign::Right);
    EXPECT_EQ((QStringList{described(g), described(wide), described(rows), described(bare)}),
              (QStringList{"2x7 fixed 1/1: NR|  T.NR|LEERDER|  PUNT|PS/VO|  TOTAAL| / ||||||",
                           "2x10 fixed 1/1: A|B|||||||| / |||||||||", "4x2 fixed 1/1: |Kol / Ry 1| / Ry 2| / Ry 3|",
                           "2x2 fixed 0/1: data| / |"}));
}

// Generic: numbers by value, texts ignoring case. Numeric: by Val. String:
// by code, or ignoring case with equal texts in their order. Over a column
// range the columns count left to right.
TEST(TextGridSort, EachOrderSortsTheColumn) {
    const std::tuple<QStringList, GridSort, QStringList, int> rows[] = {  // items, order, sorted, last column
        {{"10", "9", "2.5"}, GridSort::GenericAscending, {"2.5", "9", "10"}, 0},
        {{"5", "40", "12"}, GridSort::GenericDescending, {"40", "12", "5"}, 0},
        {{"7.5", "A", "12", ""}, GridSort::NumericDescending, {"12", "7.5", "A", ""}, 0},
        {{"7.5", "A", "12", ""}, GridSort::NumericAscending, {"A", "", "7.5", "12"}, 0},
        {{"b", "B", "a", "10", "9"}, GridSort::StringAscending, {"10", "9", "B", "a", "b"}, 0},
        {{"b", "B", "a", "10", "9"}, GridSort::StringDescending, {"b", "a", "B", "9", "10"}, 0},
        {{"b", "B", "a", "10", "9"}, GridSort::StringNoCaseAscending, {"10", "9", "a", "b", "B"}, 0},
        {{"B", "b", "a", "10", "9"}, GridSort::StringNoCaseAscending, {"10", "9", "a", "B", "b"}, 0},
        {{"x\t2", "x\t1", "a\t3"}, GridSort::GenericAscending, {"a\t3", "x\t1", "x\t2"}, 1},
    };
    for (const auto& [items, order, sorted, last_col] : rows) {
        TextGrid g = grid_with(items, last_col + 1);
        g.sort(0, last_col, order);
        EXPECT_EQ(g.clip(1, 0, g.rows() - 1, last_col), sorted.join('\r')) << items.join(',').toStdString();
    }
}

TEST(TextGridSort, StableSoEqualMarksStayInNameOrder) {
    // Rank order: names first, then marks highest first.
    TextGrid g = grid_with({"1\t300\tVenter\t55", "2\t100\tBotha\t70", "3\t200\tAdams\t55", "4\t400\tNel\t70"}, 4);
    g.sort(2, GridSort::StringAscending);
    g.sort(3, GridSort::NumericDescending);
    EXPECT_EQ(column(g, 2), (QStringList{"Botha", "Nel", "Adams", "Venter"}));
    EXPECT_EQ(column(g, 1), (QStringList{"100", "400", "200", "300"}));
}

TEST(TextGridSort, FixedRowsStayAndStylesMoveWithTheirRows) {
    TextGrid g = grid_with({"b\t2", "a\t1"}, 2);
    g.set_text(0, 0, "heading");
    g.set_cell_back_colour(1, 1, 0x00FF00);
    g.set_row_height(1, 300);
    g.sort(0, GridSort::GenericAscending);
    EXPECT_EQ(described(g), "3x2 fixed 1/1: heading| / a|1 / b|2");
    EXPECT_EQ((QList<int>{g.cell_back_colour(1, 1), g.cell_back_colour(2, 1), g.row_height(2)}),
              (QList<int>{TextGrid::kWhite, 0x00FF00, 300}));
}

// Generic order is not transitive over "10", "9" and "1a": the sort must
// still end and keep every row.
TEST(TextGridSort, MixedNumbersAndTextsNeverBreakTheSort) {
    QStringList items;
    for (int i = 0; i < 600; ++i)
        items << (i % 3 == 0 ? QString::number(i) : i % 3 == 1 ? QString::number(i) + QStringLiteral("a")
                                                                : QStringLiteral("z%1").arg(i));
    TextGrid g = grid_with(items, 1);
    g.sort(0, GridSort::GenericAscending);
    QStringList after = column(g, 0);
    after.sort();
    items.sort();
    EXPECT_EQ(after, items);
}

// Over generated names, plain and accented, upper and lower case: the
// generic order is that of the case-folded texts, equal ones kept in order.
TEST(TextGridSort, GenericOrderIsTheCaseFoldedOrderOverGeneratedNames) {
    std::mt19937 gen(7);
    const QString letters = QStringLiteral("aAbBzZ \u00E9\u00C9\u00DF\u00D6\u00F6-'");
    QStringList names;
    for (int i = 0; i < 2000; ++i) {
        QString name;
        for (int k = int(gen() % 8) + 1; k > 0; --k) name += letters[int(gen() % unsigned(letters.size()))];
        names << name;
    }
    TextGrid g = grid_with(names, 1);
    g.sort(0, GridSort::GenericAscending);
    QStringList expected = names;
    std::stable_sort(expected.begin(), expected.end(),
                     [](const QString& a, const QString& b) { return a.toCaseFolded() < b.toCaseFolded(); });
    EXPECT_EQ(column(g, 0), expected);
}

// Texts sorted in their single bytes come in the order their QStrings come
// in, in every mode: generated ASCII names and numbers (blanks, signs,
// points, exponents, mixed case, duplicates), and Latin-1 names, which take
// the way through QString.
TEST(TextGridSort, SingleByteTextsSortAsTheirQStrings) {
    std::mt19937 gen(23);
    const char* const alphabets[] = {"aAbBzZ -'09", "0123456789 .+-eE\t", "\xE9\xC9\xDF" "aB1"};
    for (const char* alphabet : alphabets) {
        const std::string letters(alphabet);
        std::vector<std::string> held;
        for (int i = 0; i < 600; ++i) {
            std::string text;
            for (int k = int(gen() % 7); k > 0; --k) text += letters[gen() % letters.size()];
            held.push_back(text);
        }
        std::vector<QLatin1StringView> views;
        std::vector<QString> texts;
        for (const std::string& text : held) {
            views.emplace_back(text.data(), qsizetype(text.size()));
            texts.push_back(QString::fromLatin1(text.data(), qsizetype(text.size())));
        }
        for (int mode = 0; mode <= 8; ++mode) {
            SCOPED_TRACE(std::string(alphabet) + " mode " + std::to_string(mode));
            EXPECT_EQ(sorted_order(views, GridSort(mode)), sorted_order(texts, GridSort(mode)));
        }
    }
}
