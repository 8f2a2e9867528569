#include "reports/page_engine.h"

#include <gtest/gtest.h>

#include <functional>

#include "reports/recording_surface.h"
#include "tests/support/golden.h"
#include "tests/support/print_dump.h"
#include "tests/support/shell_transcript.h"
#include "tests/support/temp_drive.h"

using namespace veldo;
using namespace veldo::testing;

namespace {

constexpr float kPortraitHeight10 = 770.0f / 12.0f;  // 64.17 lines at size 10

// The progress window as one line: shown or not, its heading, printer and
// page, the pages printed so far.
QString progress_line(const PrintJob& job) {
    QStringList pages;
    for (int p : job.progress.pages()) pages << QString::number(p);
    return QStringLiteral("progress %1 \"%2\" on \"%3\" page %4 of [%5]")
        .arg(job.progress.visible() ? "shown" : "hidden", job.progress.heading(), job.progress.device())
        .arg(job.progress.page())
        .arg(pages.join(' '));
}

// A school, a clock and a fresh job on a recording surface.
struct Desk {
    TempDrive drive;
    RecordingSurface surface;
    PrintJob job;

    Desk() {
        drive.run.school_name = QStringLiteral("Hoerskool Rivierpark");
        drive.run.os_product_name = QStringLiteral("Debian GNU/Linux 12");
        job.fixed_time = QTime(14, 5, 9);
        job.new_print_job = true;
    }
    std::optional<float> head(QString title = QStringLiteral("PUNTELYS"), QString subtitle = QString(),
                              PageHeadOptions options = {}) {
        return page_head(surface, job, drive.run, title, subtitle, options);
    }
    // The next head on the same sheet as a new job, from line `y`.
    std::optional<float> next_job_head(float y, const QString& title, PageHeadOptions options = {}) {
        job.new_print_job = true;
        surface.set_CurrentY(y);
        return head(title, QString(), options);
    }
    // The recorded print, what the job keeps and what the user was told, as
    // the golden files hold them.
    QString dump() const {
        const auto n = [](float v) { return QString::number(v, 'f', 3); };
        return print_dump(surface) +
               QStringLiteral("job bottom %1 rule %2 line %3 width %4 new %5 font %6 excel %7 title \"%8\"\n")
                   .arg(n(job.page_bottom), n(job.head_rule_y))
                   .arg(job.head_rule_line)
                   .arg(job.line_width)
                   .arg(job.new_print_job)
                   .arg(job.page_font_size)
                   .arg(job.output_to_excel)
                   .arg(job.print_job_title) +
               progress_line(job) + QStringLiteral(", sheets sent %1\n").arg(surface.pages_ended()) +
               transcript(drive, FakeScreens());
    }
};

struct PageEngineTest : ::testing::Test, Desk {};

}  // namespace

// Per row: the orientation, page font and line widths, the head's rule and
// the page's foot in lines of the page font, the pen's width and the font
// reset_print_font leaves (Lucida Console 10, black, not bold).
TEST_F(PageEngineTest, PageEngineSetupMeasuresTheSheetAtTheJobFont) {
    // Why; the paper, a new job, after a banner.
    const std::tuple<const char*, QString, bool, bool> cases[] = {
        {"portrait at size 10", kPortrait, true, false},
        {"any other paper is landscape at size 8: 770 / 4.8 columns", QStringLiteral("Letter"), true, false},
        {"after a banner's Arial 6 bold red, measured at the job's font", kPortrait, true, true},
        {"a running job keeps its orientation: portrait at size 8", kLandscape, false, false},
    };
    QString out;
    for (const auto& [why, paper, new_job, after_banner] : cases) {
        RecordingSurface s;
        PrintJob j;
        j.new_print_job = new_job;
        if (after_banner) {  // as end_of_print leaves the font
            s.set_font_name(QStringLiteral("ARIAL"));
            s.set_font_size(6);
            s.set_bold(true);
            s.set_fore_colour(0xFF);
        }
        print_setup(s, j, drive.run, paper);
        out += QStringLiteral("%1:\n  %2 font %3 widths %4 %5 %6 rule %7 bottom %8 pen %9\n")
                   .arg(why, s.orientation() == PageOrientation::Portrait ? "portrait" : "landscape")
                   .arg(j.page_font_size)
                   .arg(j.paper_width)
                   .arg(j.line_width)
                   .arg(j.line_width_left)
                   .arg(j.head_rule_y, 0, 'f', 3)
                   .arg(j.page_bottom, 0, 'f', 3)
                   .arg(s.draw_width());
        out += print_dump(s).section('\n', -2);  // the pen's line
    }
    EXPECT_TRUE(matches_golden(out, "reports/page_engine/setup.txt"));
}

TEST_F(PageEngineTest, PageEngineSetupShowsTheProgress) {
    surface.set_device_name(QStringLiteral("Laser 2"));
    print_setup(surface, job, drive.run);
    EXPECT_EQ(progress_line(job), "progress shown \" BUSY WITH PRINTING ... \" on \"Laser 2\" page 1 of [1]");
    drive.run.language_afrikaans = true;
    print_setup(surface, job, drive.run);
    EXPECT_EQ(progress_line(job), "progress shown \" BESIG MET DRUKWERK ... \" on \"Laser 2\" page 1 of [1]");
    job.print_job_title = QStringLiteral("OPSTELLING");
    print_setup(surface, job, drive.run);
    EXPECT_EQ(progress_line(job), "progress shown \"OPSTELLING\" on \"Laser 2\" page 1 of [1]");
    EXPECT_EQ(job.progress.times_started(), 1);  // the animation starts once
}

TEST_F(PageEngineTest, PageEngineColourSwitchComesFromTheDriveRoot) {
    print_setup(surface, job, drive.run);
    EXPECT_EQ(job.print_colour, 0);
    write_bytes(drive.path("KLEUR_Drukker.txt"), "1\r\n");
    print_setup(surface, job, drive.run);
    EXPECT_EQ(job.print_colour, 1);  // the switch's own texts are OutputTarget's load rows
}

// A form calls page_head before every block of lines: only the top of a page,
// its last five lines or a new job get a head, on a new sheet.
TEST_F(PageEngineTest, PageEngineASecondHeadOnlyAtTheTopNearTheFootOrForANewJob) {
    // Why; where the pen stands and the new job flag; whether the second head turns the page.
    const std::tuple<const char*, float, bool, bool> cases[] = {
        {"twice on a fresh page writes one head", 6, false, false},
        {"five lines from the foot starts a page", kPortraitHeight10 - 5, false, true},
        {"just above the limit goes on on the same page", kPortraitHeight10 - 5.01f, false, false},
        {"the top of a used sheet: a form that went back", 0, false, true},
        {"the new job flag forces a page mid sheet", 20, true, true},
    };
    for (const auto& [why, y, new_job, turns] : cases) {
        SCOPED_TRACE(why);
        Desk d;
        EXPECT_EQ(d.head(), std::optional<float>(6.0f));
        EXPECT_FALSE(d.job.new_print_job);
        d.surface.set_CurrentY(y);
        d.job.new_print_job = new_job;
        EXPECT_EQ(d.head(), turns ? std::optional<float>(6.0f) : std::nullopt);
        EXPECT_EQ(d.surface.Page(), turns ? 2 : 1);
        EXPECT_EQ(d.surface.texts().count(QStringLiteral("VELDO-TALLY")), turns ? 2 : 1);
        EXPECT_TRUE(progress_line(d.job).endsWith(turns ? "page 2 of [1 2]" : "page 1 of [1]"));
    }
}

// Every head and foot as drawn, one golden file each: the frame, the rule,
// the head block's three columns on three lines, title, subtitle and logo,
// the banner, and where the pen and the job stand after it.
TEST(PageEngineDrawing, PageEngineHeadsAndFeetDrawAsRecorded) {
    PageHeadOptions large, none, landscape, zoom2;
    large.large_title = true;
    none.no_head = true;
    landscape.paper = kLandscape;
    zoom2.zoom = 2;
    const auto logo = [](Desk& d, bool exists) {
        d.job.logo_file = d.drive.path("wapen.png");
        d.surface.add_picture(d.job.logo_file);
        if (exists) write_bytes(d.job.logo_file, "png");
    };
    const struct {
        const char* golden;
        const char* why;
        std::function<void(Desk&)> draw;
    } scenes[] = {
        {"head_portrait", "the school with its second name, a trimmed title centred at size 10",
         [](Desk& d) {
             d.drive.run.school_name_2 = QStringLiteral("Paarl");
             d.head(QStringLiteral("  GRAAD 10 WISKUNDE  "));
         }},
        {"head_afrikaans", "BLADSY, the frame down to 0.7 above the foot and the rule under line 5",
         [](Desk& d) {
             d.drive.run.language_afrikaans = true;
             d.head();
         }},
        {"head_zoom", "a zoom of 2 halves the lines' height and doubles the page's lines",
         [&](Desk& d) { d.head(QStringLiteral("X"), QString(), zoom2); }},
        {"head_build_text", "the build text only where its year is this year",
         [](Desk& d) {
             d.drive.run.os_build_text = QStringLiteral("2025 build 7");
             d.head();
             d.drive.run.os_build_text = QStringLiteral("2026 build 8");
             d.next_job_head(30, QStringLiteral("PUNTELYS"));
         }},
        {"head_large_title", "a large title at 12 bold, centred in the scale of 12; the job's font comes back",
         [&](Desk& d) { d.head(QStringLiteral("OPSTELLING"), QString(), large); }},
        {"head_landscape_subtitle", "landscape takes the subtitle into the title; the body at line 6 of size 8",
         [&](Desk& d) {
             QString title = QStringLiteral("SIMBOLE"), subtitle = QStringLiteral("  GRAAD 12 ");
             page_head(d.surface, d.job, d.drive.run, title, subtitle, landscape);
             EXPECT_EQ(title, QStringLiteral("SIMBOLE [GRAAD 12]"));
             EXPECT_TRUE(subtitle.isEmpty());
         }},
        {"head_portrait_subtitle", "a subtitle under the title; with a large title bold, half a line lower",
         [&](Desk& d) {
             d.head(QStringLiteral("PUNTELYS"), QStringLiteral("KLAS 10A"));
             d.job.new_print_job = true;
             d.surface.set_CurrentY(30);
             d.head(QStringLiteral("PUNTELYS"), QStringLiteral("KLAS 10B"), large);
         }},
        {"head_none_logo", "no head: a new sheet with only the logo, the body where the pen stood",
         [&](Desk& d) {
             logo(d, true);
             d.head();
             d.surface.clear_records();
             d.surface.set_CurrentY(kPortraitHeight10 - 2);
             EXPECT_EQ(d.head(QStringLiteral("X"), QString(), none), std::optional<float>(0.0f));
         }},
        {"head_logo_landscape", "no logo while its file is missing; smaller and lower in landscape",
         [&](Desk& d) {
             logo(d, false);
             d.head();
             write_bytes(d.job.logo_file, "png");
             d.next_job_head(40, QStringLiteral("X"), landscape);
         }},
        {"end_banner", "a page with a body gets the short banner in Arial 8 half a line above the foot",
         [](Desk& d) {
             d.head();
             d.surface.set_CurrentY(20);
             d.surface.print_text(QStringLiteral("body"));
             d.next_job_head(20, QStringLiteral("PUNTELYS"));
             d.surface.set_CurrentY(12);
             end_of_print(d.surface, d.job, d.drive.run);
         }},
        {"end_long_line", "nothing below line 5: the long line at size 6 instead of the banner",
         [&](Desk& d) {
             d.drive.run.language_afrikaans = true;
             d.job.print_job_title = QStringLiteral("OPSTELLING");
             d.head(QStringLiteral("X"), QString(), none);
             end_of_print(d.surface, d.job, d.drive.run);
         }},
        {"end_no_foot", "no banner when left out, no long line two lines from the foot",
         [](Desk& d) {
             d.head();
             d.surface.set_CurrentY(30);
             end_of_print(d.surface, d.job, d.drive.run, false, false);
             d.job.new_print_job = true;
             d.head();
             d.surface.set_CurrentY(kPortraitHeight10 - 2);
             end_of_print(d.surface, d.job, d.drive.run, false, true);
         }},
    };
    for (const auto& scene : scenes) {
        SCOPED_TRACE(scene.why);
        Desk d;
        scene.draw(d);
        EXPECT_TRUE(matches_golden(d.dump(), QStringLiteral("reports/page_engine/%1.txt").arg(scene.golden)));
    }
}

// The old document goes out; the new job has its title, no pages yet and the page font.
TEST_F(PageEngineTest, PageEngineOutputToThePrinterStartsANewJob) {
    job.new_print_job = false;
    surface.print_text(QStringLiteral("left over"));
    job.progress.show(drive.run, QString(), QString(), 7);
    EXPECT_TRUE(ask_output_target(surface, job, drive.run, QStringLiteral("OPSTELLING"),
                                  [](PrintJob& j) { j.print_chosen = true; }));
    EXPECT_TRUE(matches_golden(dump(), "reports/page_engine/output_printer.txt"));
}

TEST_F(PageEngineTest, PageEngineOutputToExcelDiscardsThePrinterDocumentAndCancelPrintsNothing) {
    job.output_to_excel = true;  // left over: the dialog starts without it
    bool excel_seen_clear = false;
    const bool go_on = ask_output_target(surface, job, drive.run, QString(), [&](PrintJob& j) {
        excel_seen_clear = !j.output_to_excel;
        j.print_chosen = false;
        j.output_to_excel = true;
    });
    EXPECT_TRUE(go_on);
    EXPECT_TRUE(excel_seen_clear);
    EXPECT_TRUE(matches_golden(dump(), "reports/page_engine/output_excel.txt"));

    RecordingSurface untouched;
    EXPECT_FALSE(ask_output_target(untouched, job, drive.run, QString(), [](PrintJob& j) { j.print_chosen = false; }));
    EXPECT_TRUE(untouched.records().isEmpty());
}

// The worksheet gets the head instead of the page and saves at the end; nothing is printed or said.
TEST_F(PageEngineTest, PageEngineExcelHeadGoesToTheWorksheet) {
    job.output_to_excel = true;
    drive.run.os_build_text = QStringLiteral("2026.1");
    QList<SheetHead> heads;
    bool finished = false;
    job.worksheet.sheet_head = [&](const SheetHead& h) { heads.append(h); };
    job.worksheet.finish = [&] { finished = true; };
    EXPECT_EQ(head(QStringLiteral("PUNTE"), QStringLiteral("10A")), std::optional<float>(6.0f));
    ASSERT_EQ(heads.size(), 1);
    const SheetHead& h = heads[0];
    // The title takes the subtitle in portrait too.
    EXPECT_EQ((QStringList{h.date, h.time, h.school, h.program, h.os_product, h.page, h.title, h.build}),
              (QStringList{"2026.11.23", "14:05:09", "Hoerskool Rivierpark", "VELDO-TALLY", "Debian GNU/Linux 12",
                           "PAGE : 1", "PUNTE [10A]", "2026.1"}));
    end_of_print(surface, job, drive.run);
    EXPECT_TRUE(finished);
    EXPECT_TRUE(matches_golden(dump(), "reports/page_engine/excel_head.txt"));
}
