#include "reports/grid_report.h"

#include <gtest/gtest.h>

#include <functional>

#include "reports/recording_surface.h"
#include "tests/support/golden.h"
#include "tests/support/print_dump.h"
#include "tests/support/temp_drive.h"

using namespace veldo;
using namespace veldo::testing;
using Kind = PrintRecord::Kind;

namespace {

// At the grid's size 10 a "W" is 120 twips, so 1200 twips are 10 columns of
// the recording surface's print font.
constexpr int kTen = 1200;
constexpr float kLimit = 770.0f / 12.0f - 1.75f;  // the foot of a portrait table at size 10

// A table printed below a page head, at line 6 of size 10.
struct Bench {
    RecordingSurface surface;
    PrintJob job;
    GridReportOptions options;

    Bench() {
        surface.set_font_size(10);
        surface.set_CurrentY(6);  // where page_head leaves the body
        options.no_margin = true;
    }
    static TextGrid grid(const QString& format, const QStringList& rows, int width = kTen) {
        TextGrid g(1, 1);
        g.set_font_size(10);
        g.set_format_string(format);
        for (int c = 0; c < g.cols(); ++c) g.set_col_width(c, width);
        for (const QString& r : rows) g.add_item(r);
        return g;
    }
    GridReportResult print(TextGrid& g) { return print_grid_report(surface, job, g, options); }
    bool printed(const QString& text) const { return surface.find_text(text) != nullptr; }
    // What a print leaves: the grid's rows, the text after its heading row, whether a new page is due.
    QString left(const TextGrid& g) const {
        return QString("%1 rows, then \"%2\", new page %3").arg(g.rows()).arg(g.text(1, 0)).arg(job.new_print_job);
    }
};

struct GridReportTest : ::testing::Test, Bench {};

}  // namespace

// Each table as printed, one golden file each: every text, rule and box, and
// the column widths the grid is left with.
TEST(GridReportDrawing, GridReportTablesPrintAsRecorded) {
    const QString words = QString("woord ").repeated(int(Bench().surface.ScaleWidth()) / 6 + 4).trimmed();
    QStringList blocks, tall;
    for (int i = 1; i <= 60; ++i) blocks << QStringLiteral("B%1").arg(i);
    for (int i = 0; i < 70; ++i) tall << QStringLiteral("l%1").arg(i);
    const struct {
        const char* golden;
        const char* why;
        QString format;
        QStringList rows;
        std::function<void(Bench&, TextGrid&)> set = [](Bench&, TextGrid&) {};
    } tables[] = {
        {"align", "10 columns through the letter W; half a W of padding, left, centred and right",
         "<Naam|^Klas|>Punt", {"Jan\t10A\t75.5"}},
        {"margin_portrait", "a margin of 15 twips in portrait", "<A", {"x"},
         [](Bench& b, TextGrid&) { b.options.no_margin = false; }},
        {"margin_landscape", "and of 60 in landscape", "<A", {"y"},
         [](Bench& b, TextGrid&) {
             b.options.no_margin = false;
             b.surface.set_orientation(PageOrientation::Landscape);
             b.surface.set_CurrentY(6);
         }},
        {"zero_width", "a column of width 0 prints nothing and takes no room", "<A|<B|<C", {"a1\tb1\tc1"},
         [](Bench&, TextGrid& g) { g.set_col_width(1, 0); }},
        {"last_column", "the last column limits the table", "<A|<B|<C", {"a1\tb1\tc1"},
         [](Bench& b, TextGrid&) { b.options.last_column = 2; }},
        // A text wider than its column widens the column: a figure is never
        // cut. Where the table would leave the page, a column of words gives
        // the room back down to its widest word, and its text wraps. The
        // second cell is the empty-cell sentinel.
        {"widen_0", "a figure in a column of 3 letters", "<A|<B", {"-274.0\t a\u00A6a "},
         [](Bench&, TextGrid& g) { g.set_col_width(0, 360); }},
        {"widen_1", "nine letters and the padding fill the column: no change", "<A|<B", {"ABCDEFGHI\t a\u00A6a "}},
        {"widen_2", "one letter more widens it by one", "<A|<B", {"ABCDEFGHIJ\t a\u00A6a "}},
        {"widen_3", "a name wider than its column", "<A|<B", {"Van der Merwe, Johannes\t a\u00A6a "}},
        {"widen_4", "words past the page wrap on two lines", "<A|<B", {words + "\t a\u00A6a "}},
        {"line_breaks", "~NL~ wraps a cell; the next row starts below both lines", "<Naam|<B",
         {"Een~NL~Twee\tx", "y\tz"}},
        {"bold", "a bold cell prints bold; no prefix is left", "A|B", {"gewoon\tvet"},
         [](Bench&, TextGrid& g) { g.set_cell_bold(1, 1, true); }},
        {"rotated_heading", "~~R~~ turns a heading without its marker; the heading row grows",
         "<Naam|^~~R~~Gemiddeld", {"Jan\t70"}},
        {"bare_rotated", "a bare ~~R~~ prints nothing and has no width", "<Naam|^~~R~~", {"Jan\t7", "Piet\t12"},
         [](Bench&, TextGrid& g) { g.set_col_width(1, -1); }},
        {"heading_breaks", "a heading with a break prints line by line", "<Naam~NL~Van|<B", {"Jan\tx"}},
        {"autofit", "autofit takes the longest text, not a turned heading", "<Naam|^~~R~~Gemiddeld van die klas|<Leeg",
         {"Marietjie\t70\t", "Jan\t100\t"},
         [](Bench&, TextGrid& g) {
             g.set_tag("autofit");
             g.set_col_width(2, 777);
         }},
        {"rules", "a rule under every row, the verticals and the frame last", "<A|<B", {"1\t2", "3\t4"}},
        {"group_rule", "a double rule every second column", "<A|<B|<C|<D|<E", {"1\t2\t3\t4\t5"},
         [](Bench& b, TextGrid& g) {
             for (int c = 0; c < g.cols(); ++c) g.set_col_width(c, 600);
             b.options.group_column = 0;
             b.options.group_every = 2;
         }},
        {"colour", "in colour a coloured cell gets a filled box and its fore colour", "<A|<B", {"x\ty"},
         [](Bench& b, TextGrid& g) {
             g.set_cell_back_colour(1, 1, 0x00FFFF);
             g.set_cell_fore_colour(1, 1, 0x0000FF);
             b.job.print_colour = 1;
         }},
        {"black", "in black the cell colours are passed over", "<A|<B", {"x\ty"},
         [](Bench&, TextGrid& g) { g.set_cell_back_colour(1, 1, 0x00FFFF); }},
        {"colour_rotated", "a coloured turned heading prints over its box", "<A|^~~R~~Som", {"x\ty"},
         [](Bench& b, TextGrid& g) {
             g.set_cell_back_colour(0, 1, 0xC0C0C0);
             g.set_cell_fore_colour(0, 1, 0x800000);
             b.job.print_colour = -1;
         }},
        {"first_row_0", "a first row below 1 is 1", "<A", {"x", "y"},
         [](Bench& b, TextGrid&) { b.options.first_row = 0; }},
        {"rows_per_block", "44 rows would fit one by one; blocks of 20 stop the page at 40", "<A", blocks,
         [](Bench& b, TextGrid&) { b.options.rows_per_block = 20; }},
        {"row_taller_than_a_page", "a row taller than a page still prints; the next waits", "<A",
         {tall.join("~NL~"), "next"}},
    };
    for (const auto& t : tables) {
        SCOPED_TRACE(t.why);
        Bench b;
        TextGrid g = Bench::grid(t.format, t.rows);
        t.set(b, g);
        const bool full = b.print(g) == GridReportResult::PageFull;
        QString tail = QStringLiteral("%1; grid of %2 rows starting \"%3\", \"%4\"; widths")
                           .arg(full ? "page full" : "finished")
                           .arg(g.rows())
                           .arg(g.text(0, 0), g.text(1, 0));
        for (int c = 0; c < g.cols(); ++c) tail += " " + QString::number(g.col_width(c));
        EXPECT_TRUE(matches_golden(print_dump(b.surface) + tail + "\n",
                                   QStringLiteral("reports/grid_report/%1.txt").arg(t.golden)));
    }
}

TEST_F(GridReportTest, GridReportWidthsGoThroughTheLetterWOfTheGridsFont) {
    TextGrid g = grid("<A", {});
    EXPECT_FLOAT_EQ(grid_width_in_columns(surface, g, kTen), 10.0f);
    g.set_font_size(8.25);  // a "W" of 99 twips
    EXPECT_FLOAT_EQ(grid_width_in_columns(surface, g, 990), 10.0f);
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

TEST_F(GridReportTest, GridReportAutofitSkipsEmptyAndControlColumnsAndRefusesMoreThan101) {
    TextGrid g(3, 3);
    g.set_font_size(10);
    for (int c = 0; c < 3; ++c) g.set_col_width(c, 500 + 100 * c);
    g.set_text(1, 1, QStringLiteral("\tx"));
    g.set_text(1, 2, QStringLiteral("abc"));
    ASSERT_TRUE(autofit_columns(surface, g));
    EXPECT_EQ((QList<int>{g.col_width(0), g.col_width(1), g.col_width(2)}), (QList<int>{500, 600, 480}));

    TextGrid wide(2, 102);
    wide.set_tag(QStringLiteral("autofit"));
    EXPECT_FALSE(autofit_columns(surface, wide));
    EXPECT_EQ(print(wide), GridReportResult::Refused);
    EXPECT_TRUE(surface.records().isEmpty());
}

// A full page takes its rows out of the grid and asks for a new page; a
// form's loop of page heads and tables prints every row once.
TEST_F(GridReportTest, GridReportRemovesPrintedRowsAndStopsOnAFullPage) {
    TempDrive drive;
    QStringList rows;
    for (int i = 1; i <= 120; ++i) rows << QStringLiteral("R%1\t%2").arg(i).arg(i * 2);
    TextGrid g = grid(QStringLiteral("<Naam|>Punt"), rows);
    EXPECT_EQ(print(g), GridReportResult::PageFull);
    // From line 6, a heading of 1.25 and rows of 1.25 up to the foot.
    const int fit = int((kLimit - 6 - 1.25f) / 1.25f);
    EXPECT_EQ(left(g), QStringLiteral("%1 rows, then \"R%2\", new page 1").arg(1 + 120 - fit).arg(fit + 1));
    EXPECT_TRUE(printed(QStringLiteral("R%1").arg(fit)));
    EXPECT_FALSE(printed(QStringLiteral("R%1").arg(fit + 1)));
    EXPECT_EQ(surface.records_of(Kind::Box).size(), 1);  // the frame closes the page

    int calls = 1;
    do {
        QString title = QStringLiteral("LYS"), subtitle;
        page_head(surface, job, drive.run, title, subtitle);
        ASSERT_LT(++calls, 10);
    } while (!report_done(print(g)));
    // The last page's rows stay in the grid.
    EXPECT_EQ(g.text(g.rows() - 1, 0), QStringLiteral("R120"));
    EXPECT_EQ(surface.Page(), calls);
    EXPECT_GE(calls, 3);
    for (int i = 1; i <= 120; ++i) EXPECT_EQ(surface.texts().count(QStringLiteral("R%1").arg(i)), 1) << i;
    EXPECT_EQ(surface.texts().count(QStringLiteral("Naam")), calls);  // the heading on every page
}

TEST_F(GridReportTest, GridReportMoreThan200ColumnsIsRefused) {
    TextGrid g(2, 201);
    for (int c = 0; c < 201; ++c) g.set_col_width(c, 120);
    EXPECT_EQ(print(g), GridReportResult::Refused);
    EXPECT_TRUE(report_done(GridReportResult::Refused));
    EXPECT_TRUE(surface.records().isEmpty());
    EXPECT_EQ(left(g), "2 rows, then \"\", new page 0");

    TextGrid ok(2, 200);
    for (int c = 0; c < 200; ++c) ok.set_col_width(c, 12);
    EXPECT_EQ(print(ok), GridReportResult::Finished);
}

TEST_F(GridReportTest, GridReportSetupTwinBreaksThePageAtPageMarkerThatTheListReportPrints) {
    TextGrid g = grid("<A|<B", {"een\t1", "twee\t2", "\t <PAGE> ", "drie\t3"});
    job.progress.show(RunState(), QString(), QString(), 4);
    EXPECT_EQ(print_setup_report(surface, job, g, options), GridReportResult::PageFull);
    EXPECT_TRUE(job.progress.pages().isEmpty());
    EXPECT_EQ(left(g), "2 rows, then \"drie\", new page 1");
    EXPECT_FALSE(printed(QStringLiteral("<PAGE>")));
    surface.NewPage();
    surface.set_CurrentY(6);
    EXPECT_EQ(print_setup_report(surface, job, g, options), GridReportResult::Finished);
    EXPECT_EQ(surface.find_text(QStringLiteral("drie"))->page, 2);

    // The list report prints the marker as plain text.
    TextGrid list = grid("<A", {"een", "<PAGE>", "drie"});
    EXPECT_EQ(print(list), GridReportResult::Finished);
    EXPECT_TRUE(printed(QStringLiteral("<PAGE>")));
}

TEST_F(GridReportTest, GridReportHandsTheGridToTheWorksheet) {
    TextGrid g = grid("<A", {"x"});
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
