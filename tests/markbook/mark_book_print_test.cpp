// The mark book's report grid and its legend, and the mark book, setup and
// symbol prints as the recording surface receives them.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <tuple>

#include "exchange/symbol_distribution.h"
#include "markbook/mark_book_print.h"
#include "reports/recording_surface.h"
#include "tests/support/golden.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/shell_transcript.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using Kind = PrintRecord::Kind;
using testing::TempDrive;
using testing::fill_marks_table;
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

struct Prints : ::testing::Test {
    TempDrive t;
    RecordingSurface surface;
    PrintJob job;
    bool dialog_shown = false;
    ReportRun run{surface, job, t.run, [this](PrintJob& j) {
                      dialog_shown = true;
                      j.print_chosen = true;
                  }};
    MarkBookSetup setup;

    // Learners 1001 on, "Leerder 001" on, with a mark under each used row.
    std::unique_ptr<DbfTable> book(int learners) {
        QList<QStringList> rows;
        for (int l = 1; l <= learners; ++l) {
            QStringList marks;
            for (int r = 0; r < 40; ++r) marks << (setup.rows[r].is_used() ? QString::number(l % 10) : QString());
            rows << marks_row(1000 + l, QString("Leerder %1").arg(l, 3, 10, QChar('0')), marks);
        }
        fill_marks_table(t.data("marks1.dbf"), rows);
        return DbfTable::open(t.data("marks1.dbf"));
    }
    // Each text with the pages it is printed on, "-" where it is not.
    QString pages_of(const QStringList& texts) const {
        QStringList out;
        for (const QString& text : texts) {
            QStringList pages;
            for (const PrintRecord& r : surface.records_of(Kind::Text))
                if (r.text == text && !pages.contains(QString::number(r.page))) pages << QString::number(r.page);
            out << text + " " + (pages.isEmpty() ? "-" : pages.join(','));
        }
        return out.join(", ");
    }
};

// Up to 20 columns print as one block; the 21st starts a second, where the
// learners' numbers come again but not their names; a long class follows
// on new pages with their foot. Each row: the columns and their names, the
// learners, then the pages, the texts sought with their pages and the
// legend line the columns past 20 (or all) get.
TEST_F(Prints, TheBookPrintsInBlocksOfTwentyColumnsAndPagesOfLearners) {
    const std::tuple<int, const char*, int, const char*, QStringList, QString, const char*> cases[] = {
        {20, "TAAK", 3, "1 pages, PUNTEBOEK 10 WISK 10A", {"P20", "Leerder 003", "10 WISK 10A", "BLADSY : 1", "P21"},
         "P20 1, Leerder 003 1, 10 WISK 10A 1, BLADSY : 1 1, P21 -", "^P1 TAAK 1 +P2 TAAK 2 +P3 TAAK 3 +P4 TAAK 4 *$"},
        {21, "TASK", 3, "2 pages, MARK BOOK 10 WISK 10A", {"M21", "1001", "Leerder 001"},
         "M21 2, 1001 1,2, Leerder 001 1", "^M21 TASK 21 *$"},
        {1, "T", 80, "3 pages, MARK BOOK 10 WISK 10A", {"2.../", "PAGE : 2", "Leerder 080"},
         "2.../ 1, PAGE : 2 2, Leerder 080 3", "^M1 T 1 *$"},
    };
    for (const auto& [columns, name, learners, printed, texts, pages, legend] : cases) {
        SCOPED_TRACE(columns);
        setup = MarkBookSetup();
        for (int r = 0; r < columns; ++r) setup.rows[r] = {QString("%1 %2").arg(name).arg(r + 1), "10", "", "", ""};
        auto marks = book(learners);
        surface = RecordingSurface();
        dialog_shown = false;
        t.run.language_afrikaans = columns == 20;
        ASSERT_TRUE(print_mark_book(run, setup, *marks, "10 WISK 10A"));
        EXPECT_TRUE(dialog_shown);
        EXPECT_EQ(QString("%1 pages, %2").arg(surface.pages_ended()).arg(job.export_stem), printed);
        EXPECT_EQ(pages_of(texts), pages);
        EXPECT_EQ(surface.texts().filter(QRegularExpression(legend)).size(), 1);
    }
    EXPECT_EQ(t.dialogs.texts().first(), "DRUKWERK VOLTOOI (1 bladsye)");
}

TEST_F(Prints, ACancelledChoicePrintsNothing) {
    setup.rows[0] = {"T1", "10", "", "", ""};
    auto marks = book(2);
    ReportRun cancelled{surface, job, t.run, [](PrintJob& j) { j.print_chosen = false; }};
    EXPECT_FALSE(print_mark_book(cancelled, setup, *marks, "T"));
    EXPECT_TRUE(surface.records_of(Kind::Text).isEmpty());
}

TEST_F(Prints, TheSetupPrintsItsFortyRowsInPortrait) {
    apply_example_book(setup, false);
    ASSERT_TRUE(print_setup(run, setup));
    EXPECT_EQ(pages_of({"MARK BOOK SETUP", "CLASS WORK", "40"}), "MARK BOOK SETUP 1, CLASS WORK 1, 40 1");
    EXPECT_EQ(surface.orientation(), PageOrientation::Portrait);
}

TEST_F(Prints, TheSymbolDistributionPrintsItsGrid) {
    TextGrid grid(0, 0);
    grid.set_rows(1);
    grid.set_cols(3);
    grid.set_fixed_rows(1);
    grid.set_format_string("^SIMBOOL|<P1|<P2");
    grid.add_item("\t10\t20");
    grid.add_item("7 (80-100)\t2\t1");
    grid.add_item("GEMIDDELD\t80.0\t55.5");
    t.run.language_afrikaans = true;
    ASSERT_TRUE(print_symbol_distribution(run, grid, {"9  ", "NW   ", "80", "9A ", "   ", "   "}));
    EXPECT_EQ(pages_of({"SIMBOLE 9 NW 9A", "7 (80-100)", "55.5"}), "SIMBOLE 9 NW 9A 1, 7 (80-100) 1, 55.5 1");
    EXPECT_EQ(surface.orientation(), PageOrientation::Landscape);
}

}  // namespace
}  // namespace veldo
