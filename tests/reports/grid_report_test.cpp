#include "reports/grid_report.h"

#include <gtest/gtest.h>

#include "reports/recording_surface.h"
#include "tests/support/temp_drive.h"

using namespace veldo;
using namespace veldo::testing;
using Kind = PrintRecord::Kind;

namespace {

// At the grid's size 10 a "W" is 120 twips, so 1200 twips are 10 columns of
// the recording surface's print font.
constexpr int kTen = 1200;
constexpr float kLimit = 770.0f / 12.0f - 1.75f;  // the foot of a portrait table at size 10

struct GridReportTest : ::testing::Test {
    RecordingSurface surface;
    PrintJob job;
    GridReportOptions options;

    GridReportTest() {
        surface.set_font_size(10);
        surface.set_CurrentY(6);  // where page_head leaves the body
        options.no_margin = true;
    }

    TextGrid grid(const QString& format, const QStringList& rows, int width = kTen) {
        TextGrid g(1, 1);
        g.set_font_size(10);
        g.set_format_string(format);
        for (int c = 0; c < g.cols(); ++c) g.set_col_width(c, width);
        for (const QString& r : rows) g.add_item(r);
        return g;
    }
    GridReportResult print(TextGrid& g) { return print_grid_report(surface, job, g, options); }
    // The record of a printed text; a failure and an empty record when it is missing.
    PrintRecord at(const QString& text) const {
        const PrintRecord* r = surface.find_text(text);
        if (!r) ADD_FAILURE() << "not printed: " << text.toStdString();
        return r ? *r : PrintRecord();
    }
    bool printed(const QString& text) const { return surface.find_text(text) != nullptr; }
    bool printed_containing(const QString& part) const {
        for (const QString& t : surface.texts())
            if (t.contains(part)) return true;
        return false;
    }
    QList<PrintRecord> lines_at_y(float y) const {
        QList<PrintRecord> out;
        for (const auto& r : surface.records_of(Kind::Line))
            if (qFuzzyCompare(r.y, y) && qFuzzyCompare(r.y2, y)) out << r;
        return out;
    }
};

}  // namespace

TEST_F(GridReportTest, GridReportColumnsTakeTheirWidthThroughTheLetterWAndAlignWithPadding) {
    TextGrid g = grid(QStringLiteral("<Naam|^Klas|>Punt"), {QStringLiteral("Jan\t10A\t75.5")});
    EXPECT_FLOAT_EQ(grid_width_in_columns(surface, g, kTen), 10.0f);
    g.set_font_size(8.25);  // a "W" of 99 twips
    EXPECT_FLOAT_EQ(grid_width_in_columns(surface, g, 990), 10.0f);
    g.set_font_size(10);
    EXPECT_EQ(print(g), GridReportResult::Finished);
    EXPECT_FLOAT_EQ(at(QStringLiteral("Jan")).x, 0.5f);           // half a "W" in from the left edge
    EXPECT_FLOAT_EQ(at(QStringLiteral("10A")).x, 10 + 3.5f);      // centred in 10..20
    EXPECT_FLOAT_EQ(at(QStringLiteral("75.5")).x, 30 - 0.5f - 4);  // half a "W" in from the right edge
    EXPECT_FLOAT_EQ(at(QStringLiteral("Punt")).x, 30 - 0.5f - 4);
    // The heading row (1 line + gap) comes first, then the row.
    EXPECT_FLOAT_EQ(at(QStringLiteral("Naam")).y, 6.125f);
    EXPECT_FLOAT_EQ(at(QStringLiteral("Jan")).y, 6 + 1.25f + 0.125f);
}

TEST_F(GridReportTest, GridReportLeftMarginByOrientation) {
    options.no_margin = false;
    TextGrid g = grid(QStringLiteral("<A"), {QStringLiteral("x")});
    print(g);
    EXPECT_FLOAT_EQ(at(QStringLiteral("x")).x, 15.0f / 120 + 0.5f);

    RecordingSurface wide;
    wide.set_orientation(PageOrientation::Landscape);
    wide.set_CurrentY(6);
    TextGrid h = grid(QStringLiteral("<A"), {QStringLiteral("y")});
    print_grid_report(wide, job, h, options);
    EXPECT_FLOAT_EQ(wide.find_text(QStringLiteral("y"))->x, 60.0f / 120 + 0.5f);
}

TEST_F(GridReportTest, GridReportZeroWidthColumnPrintsNothingAndTakesNoSpace) {
    TextGrid g = grid(QStringLiteral("<A|<B|<C"), {QStringLiteral("a1\tb1\tc1")});
    g.set_col_width(1, 0);
    print(g);
    EXPECT_FALSE(printed(QStringLiteral("B")));
    EXPECT_FALSE(printed(QStringLiteral("b1")));
    EXPECT_FLOAT_EQ(at(QStringLiteral("c1")).x, 10.5f);
    const auto frame = surface.records_of(Kind::Box);
    ASSERT_EQ(frame.size(), 1);
    EXPECT_FLOAT_EQ(frame[0].x2, 20.0f);
}

TEST_F(GridReportTest, GridReportLastColumnLimitsTheTable) {
    TextGrid g = grid(QStringLiteral("<A|<B|<C"), {QStringLiteral("a1\tb1\tc1")});
    options.last_column = 2;
    print(g);
    EXPECT_TRUE(printed(QStringLiteral("b1")));
    EXPECT_FALSE(printed(QStringLiteral("c1")));
}

// A text wider than its column widens the column: a figure is never cut.
// Where the widened table would leave the page, a column of words gives the
// room back down to its widest word, and its text wraps.
TEST_F(GridReportTest, GridReportColumnsWidenToTheirWidestTextAndWordsWrapAtThePageEdge) {
    const float page = surface.ScaleWidth();
    struct Row {
        const char* why;
        QString cell;
        int width;                 // twips of the first column
        float right;               // the frame's right edge
        QStringList lines;         // what prints of the cell, line by line
    } rows[] = {
        {"a figure in a column of 3 letters", "-274.0", 360, 6 + 1 + 10, {"-274.0"}},
        {"the column fits already: no change", "100.6", kTen, 20, {"100.6"}},
        {"one letter wider than the column", "ABCDEFGHIJ", kTen, 11 + 10, {"ABCDEFGHIJ"}},
        {"a name wider than its column", "Van der Merwe, Johannes", kTen, 24 + 10, {"Van der Merwe, Johannes"}},
        {"words past the page wrap", QString("woord ").repeated(int(page) / 6 + 4).trimmed(), kTen, page,
         {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.why);
        surface = RecordingSurface();
        surface.set_font_size(10);
        surface.set_CurrentY(6);
        TextGrid g = grid(QStringLiteral("<A|<B"), {row.cell + "\t a\u00A6a "});
        g.set_col_width(0, row.width);
        print(g);
        const auto frame = surface.records_of(Kind::Box);
        ASSERT_EQ(frame.size(), 1);
        EXPECT_NEAR(frame[0].x2, row.right, 1e-3);
        EXPECT_FALSE(printed_containing(QStringLiteral("a\u00A6a")));  // the sentinel is an empty cell
        if (!row.lines.isEmpty()) {
            EXPECT_TRUE(printed(row.lines.first()));
            continue;
        }
        // Every word printed whole, on as many lines as the page needs.
        QStringList words;
        for (const QString& t : surface.texts()) words += t.split(' ', Qt::SkipEmptyParts);
        EXPECT_EQ(words.count("woord"), row.cell.count("woord"));
        EXPECT_EQ(surface.texts().size(), 4);  // two headings and the cell's two lines
    }
}

TEST_F(GridReportTest, GridReportLineBreaksWrapTheCell) {
    TextGrid g = grid(QStringLiteral("<Naam|<B"), {QStringLiteral("Een~NL~Twee\tx"), QStringLiteral("y\tz")});
    print(g);
    EXPECT_FLOAT_EQ(at(QStringLiteral("Twee")).y, at(QStringLiteral("Een")).y + 1);
    // The next row starts below both lines.
    EXPECT_FLOAT_EQ(at(QStringLiteral("y")).y, 6 + 1.25f + 2.25f + 0.125f);
}

TEST_F(GridReportTest, GridReportBoldCellsPrintBold) {
    TextGrid g = grid(QStringLiteral("A|B"), {QStringLiteral("gewoon\tvet")});
    g.set_cell_bold(1, 1, true);
    print(g);
    EXPECT_FALSE(at(QStringLiteral("gewoon")).bold);
    EXPECT_TRUE(at(QStringLiteral("vet")).bold);
    EXPECT_FLOAT_EQ(at(QStringLiteral("vet")).x, 10.5f);  // no prefix: left
    EXPECT_FALSE(surface.bold());
}

TEST(GridReportText, FitDropsCharactersFromTheEndAndWrapBreaksAtMarkersBlanksAndHard) {
    RecordingSurface s;
    EXPECT_EQ(fit_cell_text(s, QStringLiteral("ABCDEFGH"), 5), QStringLiteral("ABCDE"));
    EXPECT_EQ(fit_cell_text(s, QStringLiteral("ABC"), 5), QStringLiteral("ABC"));
    EXPECT_EQ(fit_cell_text(s, QStringLiteral("   "), 1), QStringLiteral("   "));
    EXPECT_EQ(fit_cell_text(s, QStringLiteral("AB"), 0), QString());
    EXPECT_EQ(wrap_cell_text(s, QStringLiteral("a~NL~b\r\nc\nd"), 9), QStringLiteral("a\nb\nc\nd"));
    EXPECT_EQ(wrap_cell_text(s, QStringLiteral("aaa bbb ccc"), 7), QStringLiteral("aaa bbb\nccc"));
    EXPECT_EQ(wrap_cell_text(s, QStringLiteral("abcdefghij"), 4), QStringLiteral("abcd\nefgh\nij"));
    EXPECT_TRUE(has_line_break(QStringLiteral("x~NL~y")));
    EXPECT_FALSE(has_line_break(QStringLiteral("x NL y")));
}

TEST_F(GridReportTest, GridReportRotatedHeadingLosesItsMarkerAndRaisesTheRow) {
    TextGrid g = grid(QStringLiteral("<Naam|^~~R~~Gemiddeld"), {QStringLiteral("Jan\t70")});
    print(g);
    const auto rotated = surface.records_of(Kind::Rotated);
    ASSERT_EQ(rotated.size(), 1);
    EXPECT_EQ(rotated[0].text, QStringLiteral("Gemiddeld"));
    EXPECT_FALSE(printed(QStringLiteral("~~R~~Gemiddeld")));
    // 9 characters upright are 4.5 lines; half a line more, and the gap.
    const float heading = 4.5f + 0.5f + 0.25f;
    EXPECT_FLOAT_EQ(rotated[0].y, 6 + heading - 0.125f);
    EXPECT_FLOAT_EQ(rotated[0].x, 10 + (10 - 2) / 2.0f);
    EXPECT_FLOAT_EQ(at(QStringLiteral("Jan")).y, 6 + heading + 0.125f);
}

TEST_F(GridReportTest, GridReportBareRotatedMarkerPrintsNothingAndHasNoWidth) {
    TextGrid g = grid(QStringLiteral("<Naam|^~~R~~"), {QStringLiteral("Jan\t7"), QStringLiteral("Piet\t12")});
    g.set_col_width(1, -1);  // width from the contents
    print(g);
    EXPECT_TRUE(surface.records_of(Kind::Rotated).isEmpty());
    EXPECT_FALSE(printed_containing(QStringLiteral("~~R~~")));
    // The column is as wide as "12" and its padding, not the marker.
    EXPECT_FLOAT_EQ(surface.records_of(Kind::Box)[0].x2, 10 + 2 + 1.0f);
    // And the heading row stays one line high.
    EXPECT_FLOAT_EQ(at(QStringLiteral("Jan")).y, 6 + 1.25f + 0.125f);
}

TEST_F(GridReportTest, GridReportHeadingWithBreaksPrintsLineByLine) {
    TextGrid g = grid(QStringLiteral("<Naam~NL~Van|<B"), {QStringLiteral("Jan\tx")});
    print(g);
    EXPECT_FLOAT_EQ(at(QStringLiteral("Van")).y, 7.125f);
    EXPECT_FLOAT_EQ(at(QStringLiteral("Jan")).y, 6 + 2.25f + 0.125f);
}

TEST_F(GridReportTest, GridReportAutofitTakesTheLongestText) {
    TextGrid g = grid(QStringLiteral("<Naam|^~~R~~Gemiddeld van die klas|<Leeg"),
                      {QStringLiteral("Marietjie\t70\t"), QStringLiteral("Jan\t100\t")});
    g.set_tag(QStringLiteral("autofit"));
    g.set_col_width(2, 777);
    print(g);
    EXPECT_EQ(g.col_width(0), (9 + 1) * 120);
    EXPECT_EQ(g.col_width(1), (3 + 1) * 120);  // the rotated heading doesn't count
    EXPECT_EQ(g.col_width(2), (4 + 1) * 120);  // the heading is its longest text
    EXPECT_FLOAT_EQ(at(QStringLiteral("100")).x, 10 + 0.5f);
}

TEST_F(GridReportTest, GridReportAutofitSkipsEmptyAndControlColumnsAndRefusesMoreThan101) {
    TextGrid g(3, 3);
    g.set_font_size(10);
    g.set_col_width(0, 500);
    g.set_col_width(1, 600);
    g.set_col_width(2, 700);
    g.set_text(1, 1, QStringLiteral("\tx"));
    g.set_text(1, 2, QStringLiteral("abc"));
    ASSERT_TRUE(autofit_columns(surface, g));
    EXPECT_EQ(g.col_width(0), 500);
    EXPECT_EQ(g.col_width(1), 600);
    EXPECT_EQ(g.col_width(2), 480);

    TextGrid wide(2, 102);
    wide.set_tag(QStringLiteral("autofit"));
    EXPECT_FALSE(autofit_columns(surface, wide));
    EXPECT_EQ(print(wide), GridReportResult::Refused);
    EXPECT_TRUE(surface.records().isEmpty());
}

TEST_F(GridReportTest, GridReportRulesUnderRowsAndFrameAtTheEnd) {
    TextGrid g = grid(QStringLiteral("<A|<B"), {QStringLiteral("1\t2"), QStringLiteral("3\t4")});
    print(g);
    for (float y : {6 + 1.25f, 6 + 2.5f, 6 + 3.75f}) {
        const auto rule = lines_at_y(y);
        ASSERT_EQ(rule.size(), 1) << y;
        EXPECT_FLOAT_EQ(rule[0].x, 0.0f);
        EXPECT_FLOAT_EQ(rule[0].x2, 20.0f);
    }
    int verticals = 0;
    for (const auto& l : surface.records_of(Kind::Line))
        if (l.x == l.x2) {
            ++verticals;
            EXPECT_FLOAT_EQ(l.y, 6.0f);
            EXPECT_FLOAT_EQ(l.y2, 6 + 3.75f);
        }
    EXPECT_EQ(verticals, 3);
    const auto frame = surface.records_of(Kind::Box);
    ASSERT_EQ(frame.size(), 1);
    EXPECT_FLOAT_EQ(frame[0].y, 6.0f);
    EXPECT_FLOAT_EQ(frame[0].y2, 6 + 3.75f);
    EXPECT_FLOAT_EQ(surface.CurrentY(), 6 + 3.75f);  // the form goes on below the table
    EXPECT_EQ(surface.records().last().kind, Kind::Box);
}

TEST_F(GridReportTest, GridReportGroupRuleEverySoManyColumns) {
    TextGrid g = grid(QStringLiteral("<A|<B|<C|<D|<E"), {QStringLiteral("1\t2\t3\t4\t5")}, 600);
    options.group_column = 0;
    options.group_every = 2;
    print(g);
    QList<float> doubled;
    for (const auto& l : surface.records_of(Kind::Line))
        if (l.x == l.x2 && std::fmod(l.x, 1.0f) != 0.0f) doubled << l.x;
    EXPECT_EQ(doubled, (QList<float>{10.15f, 20.15f}));
}

TEST_F(GridReportTest, GridReportRemovesPrintedRowsAndStopsOnAFullPage) {
    QStringList rows;
    for (int i = 1; i <= 60; ++i) rows << QStringLiteral("L%1\t%2").arg(i).arg(i * 2);
    TextGrid g = grid(QStringLiteral("<Naam|>Punt"), rows);
    EXPECT_EQ(print(g), GridReportResult::PageFull);
    // From line 6, a heading of 1.25 and rows of 1.25 up to the foot.
    const int fit = int((kLimit - 6 - 1.25f) / 1.25f);
    EXPECT_EQ(g.rows(), 1 + 60 - fit);
    EXPECT_EQ(g.text(1, 0), QStringLiteral("L%1").arg(fit + 1));
    EXPECT_TRUE(job.new_print_job);
    EXPECT_TRUE(printed(QStringLiteral("L%1").arg(fit)));
    EXPECT_FALSE(printed(QStringLiteral("L%1").arg(fit + 1)));
    EXPECT_EQ(surface.records_of(Kind::Box).size(), 1);  // the frame closes the page
}

TEST_F(GridReportTest, GridReportLoopWithPageHeadPrintsEveryRowOnce) {
    TempDrive drive;
    QStringList rows;
    for (int i = 1; i <= 120; ++i) rows << QStringLiteral("R%1\t%2").arg(i).arg(i);
    TextGrid g = grid(QStringLiteral("<Naam|>Punt"), rows);
    RecordingSurface s;
    job.new_print_job = true;
    int calls = 0;
    while (true) {
        QString title = QStringLiteral("LYS"), subtitle;
        page_head(s, job, drive.run, title, subtitle);
        ++calls;
        if (report_done(print_grid_report(s, job, g, options))) break;
        ASSERT_LT(calls, 10);
    }
    // Full pages take their rows out of the grid; the last page's rows stay.
    EXPECT_GT(g.rows(), 1);
    EXPECT_LT(g.rows(), 60);
    EXPECT_EQ(g.text(g.rows() - 1, 0), QStringLiteral("R120"));
    EXPECT_EQ(s.Page(), calls);
    EXPECT_GE(calls, 3);
    for (int i = 1; i <= 120; ++i) EXPECT_EQ(s.texts().count(QStringLiteral("R%1").arg(i)), 1) << i;
    EXPECT_EQ(s.texts().count(QStringLiteral("Naam")), calls);  // the heading on every page
}

TEST_F(GridReportTest, GridReportFirstRowBelowOneIsOne) {
    TextGrid g = grid(QStringLiteral("<A"), {QStringLiteral("x"), QStringLiteral("y")});
    options.first_row = 0;
    EXPECT_EQ(print(g), GridReportResult::Finished);
    EXPECT_EQ(g.rows(), 3);
    EXPECT_EQ(g.text(0, 0), QStringLiteral("A"));
    EXPECT_TRUE(surface.texts().contains(QStringLiteral("x")));
}

TEST_F(GridReportTest, GridReportRowsPerBlockKeepBlocksTogether) {
    QStringList rows;
    for (int i = 1; i <= 60; ++i) rows << QStringLiteral("B%1").arg(i);
    TextGrid g = grid(QStringLiteral("<A"), rows);
    options.rows_per_block = 20;
    print(g);
    // 44 rows would fit one by one; blocks of 20 stop the page at 40.
    EXPECT_EQ(g.rows(), 1 + 20);
    EXPECT_EQ(g.text(1, 0), QStringLiteral("B41"));
}

TEST_F(GridReportTest, GridReportRowTallerThanAPageStillPrints) {
    QStringList tall;
    for (int i = 0; i < 70; ++i) tall << QStringLiteral("l%1").arg(i);
    TextGrid g = grid(QStringLiteral("<A"), {tall.join(QStringLiteral("~NL~")), QStringLiteral("next")});
    EXPECT_EQ(print(g), GridReportResult::PageFull);
    EXPECT_TRUE(printed(QStringLiteral("l0")));
    EXPECT_EQ(g.rows(), 2);
    EXPECT_EQ(g.text(1, 0), QStringLiteral("next"));
}

TEST_F(GridReportTest, GridReportMoreThan200ColumnsIsRefused) {
    TextGrid g(2, 201);
    for (int c = 0; c < 201; ++c) g.set_col_width(c, 120);
    EXPECT_EQ(print(g), GridReportResult::Refused);
    EXPECT_TRUE(report_done(GridReportResult::Refused));
    EXPECT_TRUE(surface.records().isEmpty());
    EXPECT_EQ(g.rows(), 2);

    TextGrid ok(2, 200);
    for (int c = 0; c < 200; ++c) ok.set_col_width(c, 12);
    EXPECT_EQ(print(ok), GridReportResult::Finished);
}

TEST_F(GridReportTest, GridReportSetupTwinBreaksThePageAtPageMarkerThatTheListReportPrints) {
    TextGrid g = grid(QStringLiteral("<A|<B"),
                      {QStringLiteral("een\t1"), QStringLiteral("twee\t2"), QStringLiteral("\t <PAGE> "),
                       QStringLiteral("drie\t3")});
    job.progress.show(RunState(), QString(), QString(), 4);
    EXPECT_EQ(print_setup_report(surface, job, g, options), GridReportResult::PageFull);
    EXPECT_TRUE(job.progress.pages().isEmpty());
    EXPECT_TRUE(job.new_print_job);
    EXPECT_EQ(g.rows(), 2);
    EXPECT_EQ(g.text(1, 0), QStringLiteral("drie"));
    EXPECT_FALSE(printed(QStringLiteral("<PAGE>")));
    surface.NewPage();
    surface.set_CurrentY(6);
    EXPECT_EQ(print_setup_report(surface, job, g, options), GridReportResult::Finished);
    EXPECT_EQ(at(QStringLiteral("drie")).page, 2);

    // The list report prints the marker as plain text.
    TextGrid list =
        grid(QStringLiteral("<A"), {QStringLiteral("een"), QStringLiteral("<PAGE>"), QStringLiteral("drie")});
    EXPECT_EQ(print(list), GridReportResult::Finished);
    EXPECT_TRUE(printed(QStringLiteral("<PAGE>")));
}

TEST_F(GridReportTest, GridReportColouredCellsGetABoxOnlyWhenPrintingInColour) {
    TextGrid g = grid(QStringLiteral("<A|<B"), {QStringLiteral("x\ty")});
    g.set_cell_back_colour(1, 1, 0x00FFFF);
    g.set_cell_fore_colour(1, 1, 0x0000FF);
    job.print_colour = 1;
    print(g);
    QList<PrintRecord> filled;
    for (const auto& b : surface.records_of(Kind::Box))
        if (b.fill != -1) filled << b;
    ASSERT_EQ(filled.size(), 1);
    EXPECT_EQ(filled[0].fill, 0x00FFFF);
    EXPECT_FLOAT_EQ(filled[0].x, 10.0f);
    EXPECT_FLOAT_EQ(filled[0].x2, 20.0f);
    EXPECT_EQ(at(QStringLiteral("y")).colour, 0x0000FF);
    EXPECT_EQ(at(QStringLiteral("x")).colour, 0);

    // In black the cell colours are passed over.
    RecordingSurface black;
    black.set_CurrentY(6);
    TextGrid h = grid(QStringLiteral("<A|<B"), {QStringLiteral("x\ty")});
    h.set_cell_back_colour(1, 1, 0x00FFFF);
    job.print_colour = 0;
    print_grid_report(black, job, h, options);
    for (const auto& b : black.records_of(Kind::Box)) EXPECT_EQ(b.fill, -1);
}

TEST_F(GridReportTest, GridReportColouredTurnedHeadingPrintsOverItsBox) {
    TextGrid g = grid(QStringLiteral("<A|^~~R~~Som"), {QStringLiteral("x\ty")});
    g.set_cell_back_colour(0, 1, 0xC0C0C0);
    g.set_cell_fore_colour(0, 1, 0x800000);
    job.print_colour = -1;
    print(g);
    int box_at = -1, text_at = -1;
    const auto& all = surface.records();
    for (int i = 0; i < all.size(); ++i) {
        if (all[i].kind == Kind::Box && all[i].fill == 0xC0C0C0) box_at = i;
        if (all[i].kind == Kind::Rotated) text_at = i;
    }
    ASSERT_GE(box_at, 0);
    ASSERT_GE(text_at, 0);
    EXPECT_LT(box_at, text_at);
    EXPECT_EQ(all[text_at].colour, 0x800000);
    EXPECT_EQ(surface.fore_colour(), 0);
}

TEST_F(GridReportTest, GridReportHandsTheGridToTheWorksheet) {
    TextGrid g = grid(QStringLiteral("<A"), {QStringLiteral("x")});
    int written = 0, filed = 0;
    job.worksheet.write_grid = [&](TextGrid& t) { written += t.rows(); };
    job.worksheet.grid_to_new_file = [&](TextGrid&) { ++filed; };
    job.output_to_excel = true;
    EXPECT_EQ(print(g), GridReportResult::Finished);
    EXPECT_EQ(written, 2);
    job.output_to_excel = false;
    options.to_excel_file = true;
    EXPECT_EQ(print(g), GridReportResult::Finished);
    EXPECT_EQ(filed, 1);
    EXPECT_TRUE(surface.records().isEmpty());
}
