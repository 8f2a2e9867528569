// The mark book, setup and symbol prints as the recording surface receives
// them.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QSet>

#include "exchange/symbol_distribution.h"
#include "markbook/mark_book_print.h"
#include "reports/recording_surface.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using Kind = PrintRecord::Kind;
using testing::TempDrive;
using testing::fill_marks_table;
using testing::marks_row;

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
    int pages_with(const QString& text) const {
        QSet<int> pages;
        for (const PrintRecord& r : surface.records_of(Kind::Text))
            if (r.text == text) pages.insert(r.page);
        return int(pages.size());
    }
};

TEST_F(Prints, AMarkBookOfTwentyColumnsIsOneBlockWithItsLegend) {
    for (int r = 0; r < 20; ++r) setup.rows[r] = {QString("TAAK %1").arg(r + 1), "10", "", "", ""};
    auto marks = book(3);
    t.run.language_afrikaans = true;
    ASSERT_TRUE(print_mark_book(run, setup, *marks, "10 WISK 10A"));
    EXPECT_TRUE(dialog_shown);
    EXPECT_EQ(job.export_stem, "PUNTEBOEK 10 WISK 10A");
    EXPECT_EQ(surface.pages_ended(), 1);
    for (const char* text : {"P20", "Leerder 003", "10 WISK 10A", "BLADSY : 1"})
        EXPECT_TRUE(surface.find_text(text)) << text;
    EXPECT_FALSE(surface.find_text("P21"));
    const QStringList texts = surface.texts();
    EXPECT_EQ(texts.filter(QRegularExpression("^P1 TAAK 1 +P2 TAAK 2 +P3 TAAK 3 +P4 TAAK 4 *$")).size(), 1);
    EXPECT_EQ(t.dialogs.texts().last(), "DRUKWERK VOLTOOI (1 bladsye)");
}

TEST_F(Prints, TwentyOneColumnsPrintASecondBlockWithTheLearnersNumbers) {
    for (int r = 0; r < 21; ++r) setup.rows[r] = {QString("TASK %1").arg(r + 1), "10", "", "", ""};
    auto marks = book(3);
    ASSERT_TRUE(print_mark_book(run, setup, *marks, "T"));
    EXPECT_EQ(surface.pages_ended(), 2);
    const PrintRecord* m21 = surface.find_text("M21");
    ASSERT_TRUE(m21);
    EXPECT_EQ(m21->page, 2);
    EXPECT_EQ(pages_with("1001"), 2);        // the learner's number in both blocks
    EXPECT_EQ(pages_with("Leerder 001"), 1);  // the name only in the first
    // The second block's legend names only the columns past 20.
    EXPECT_EQ(surface.texts().filter(QRegularExpression("^M21 TASK 21 *$")).size(), 1);
}

TEST_F(Prints, ALongBookFollowsOnNewPagesWithTheirFoot) {
    setup.rows[0] = {"T1", "10", "", "", ""};
    auto marks = book(80);
    ASSERT_TRUE(print_mark_book(run, setup, *marks, "T"));
    EXPECT_GE(surface.pages_ended(), 2);
    for (const char* text : {"2.../", "PAGE : 2"}) EXPECT_TRUE(surface.find_text(text)) << text;
    EXPECT_EQ(pages_with("Leerder 080"), 1);
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
    for (const char* text : {"MARK BOOK SETUP", "CLASS WORK", "40"}) EXPECT_TRUE(surface.find_text(text)) << text;
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
    for (const char* text : {"SIMBOLE 9 NW 9A", "7 (80-100)", "55.5"}) EXPECT_TRUE(surface.find_text(text)) << text;
    EXPECT_EQ(surface.orientation(), PageOrientation::Landscape);
}

}  // namespace
}  // namespace veldo
