#include "reports/page_engine.h"

#include <gtest/gtest.h>

#include "reports/recording_surface.h"
#include "tests/support/temp_drive.h"

using namespace veldo;
using namespace veldo::testing;
using Kind = PrintRecord::Kind;

namespace {

constexpr float kPortraitWidth10 = 523.0f / 6.0f;    // 87.17 columns
constexpr float kPortraitHeight10 = 770.0f / 12.0f;  // 64.17 lines

struct PageEngineTest : ::testing::Test {
    TempDrive drive;
    RecordingSurface surface;
    PrintJob job;

    PageEngineTest() {
        drive.run.school_name = QStringLiteral("Hoerskool Rivierpark");
        drive.run.os_product_name = QStringLiteral("Debian GNU/Linux 12");
        job.fixed_time = QTime(14, 5, 9);
        job.new_print_job = true;
    }
    std::optional<float> head(QString title = QStringLiteral("PUNTELYS"), QString subtitle = QString(),
                              PageHeadOptions options = {}) {
        return page_head(surface, job, drive.run, title, subtitle, options);
    }
    int count(const QString& text) const { return int(surface.texts().count(text)); }
    // The record of a printed text; a failure and an empty record when it is missing.
    PrintRecord at(const QString& text) const {
        const PrintRecord* r = surface.find_text(text);
        if (!r) ADD_FAILURE() << "not printed: " << text.toStdString();
        return r ? *r : PrintRecord();
    }
    bool printed_containing(const QString& part) const {
        for (const QString& t : surface.texts())
            if (t.contains(part)) return true;
        return false;
    }
};

}  // namespace

TEST_F(PageEngineTest, PageEngineSetupMeasuresTheSheetAtTheJobFont) {
    const float landscape8 = 523.0f / 9.6f, portrait8 = 770.0f / 9.6f;  // lines at size 8
    struct Case {
        const char* why;
        QString paper;
        bool new_job, after_banner;
        PageOrientation orientation;
        int font, width;
        float rule_y, bottom;
    };
    const Case cases[] = {
        {"portrait at size 10", kPortrait, true, false, PageOrientation::Portrait, 10, 87,
         kPortraitHeight10 / 12 - 0.5f, kPortraitHeight10 - 1.25f},
        {"any other paper is landscape at size 8: 770 / 4.8 columns", QStringLiteral("Letter"), true, false,
         PageOrientation::Landscape, 8, 160, landscape8 / 12 + 1, landscape8 - 1.25f},
        {"after a banner's Arial 6, measured at the job's font", kPortrait, true, true, PageOrientation::Portrait, 10,
         87, kPortraitHeight10 / 12 - 0.5f, kPortraitHeight10 - 1.25f},
        {"a running job keeps its orientation", kLandscape, false, false, PageOrientation::Portrait, 8, 109,
         portrait8 / 12 + 1, portrait8 - 1.25f},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        RecordingSurface s;
        PrintJob j;
        j.new_print_job = c.new_job;
        if (c.after_banner) {
            s.set_font_name(QStringLiteral("ARIAL"));
            s.set_font_size(6);  // as end_of_print leaves it
            s.set_bold(true);
            s.set_fore_colour(0xFF);
        }
        print_setup(s, j, drive.run, c.paper);
        EXPECT_EQ(s.orientation(), c.orientation);
        EXPECT_EQ(j.page_font_size, c.font);
        EXPECT_EQ(j.paper_width, c.width);
        EXPECT_EQ(j.line_width, c.width);
        EXPECT_EQ(j.line_width_left, c.width);
        EXPECT_FLOAT_EQ(j.head_rule_y, c.rule_y);
        EXPECT_FLOAT_EQ(j.page_bottom, c.bottom);
        EXPECT_EQ(s.draw_width(), 2);
        // reset_print_font leaves the job at Lucida Console 10, black, not bold.
        EXPECT_EQ(s.font_name(), QStringLiteral("Lucida Console"));
        EXPECT_FLOAT_EQ(s.font_size(), 10.0f);
        EXPECT_FALSE(s.bold());
        EXPECT_EQ(s.fore_colour(), 0);
    }
}

TEST_F(PageEngineTest, PageEngineSetupShowsTheProgress) {
    surface.set_device_name(QStringLiteral("Laser 2"));
    print_setup(surface, job, drive.run);
    EXPECT_TRUE(job.progress.visible());
    EXPECT_EQ(job.progress.heading(), QStringLiteral(" BUSY WITH PRINTING ... "));
    EXPECT_EQ(job.progress.device(), QStringLiteral("Laser 2"));
    EXPECT_EQ(job.progress.page(), 1);
    drive.run.language_afrikaans = true;
    print_setup(surface, job, drive.run);
    EXPECT_EQ(job.progress.heading(), QStringLiteral(" BESIG MET DRUKWERK ... "));
    job.print_job_title = QStringLiteral("OPSTELLING");
    print_setup(surface, job, drive.run);
    EXPECT_EQ(job.progress.heading(), QStringLiteral("OPSTELLING"));
    EXPECT_EQ(job.progress.times_started(), 1);  // the animation starts once
}

TEST_F(PageEngineTest, PageEngineColourSwitchComesFromTheDriveRoot) {
    print_setup(surface, job, drive.run);
    EXPECT_EQ(job.print_colour, 0);
    write_bytes(drive.path("KLEUR_Drukker.txt"), "1\r\n");
    print_setup(surface, job, drive.run);
    EXPECT_EQ(job.print_colour, 1);
    write_bytes(drive.path("KLEUR_Drukker.txt"), "#TRUE#\r\n");
    EXPECT_EQ(read_print_colour(drive.run), -1);
    write_bytes(drive.path("KLEUR_Drukker.txt"), "rubbish");
    EXPECT_EQ(read_print_colour(drive.run), 0);
}

TEST_F(PageEngineTest, PageEngineZoomStretchesTheLinesOfThePage) {
    PageHeadOptions o;
    o.zoom = 2;
    head(QStringLiteral("X"), QString(), o);
    EXPECT_FLOAT_EQ(job.page_bottom, 2 * kPortraitHeight10 - 0.7f);
    EXPECT_FLOAT_EQ(job.head_rule_y, 2 * kPortraitHeight10 / 12 - 0.5f);
    EXPECT_FLOAT_EQ(at(QStringLiteral("PAGE : 1")).py, 2.75 * 6);  // half-height lines
}

// A form calls page_head before every block of lines: only the top of a page,
// its last five lines or a new job get a head, on a new sheet.
TEST_F(PageEngineTest, PageEngineASecondHeadOnlyAtTheTopNearTheFootOrForANewJob) {
    struct Case {
        const char* why;
        float y;
        bool new_job, turns;
    };
    const Case cases[] = {
        {"twice on a fresh page writes one head", 6, false, false},
        {"five lines from the foot starts a page", kPortraitHeight10 - 5, false, true},
        {"just above the limit goes on on the same page", kPortraitHeight10 - 5.01f, false, false},
        {"the top of a used sheet: a form that went back", 0, false, true},
        {"the new job flag forces a page mid sheet", 20, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        RecordingSurface s;
        PrintJob j;
        j.new_print_job = true;
        QString title = QStringLiteral("PUNTELYS"), subtitle;
        EXPECT_EQ(page_head(s, j, drive.run, title, subtitle), std::optional<float>(6.0f));
        EXPECT_FALSE(j.new_print_job);
        s.set_CurrentY(c.y);
        j.new_print_job = c.new_job;
        EXPECT_EQ(page_head(s, j, drive.run, title, subtitle), c.turns ? std::optional<float>(6.0f) : std::nullopt);
        EXPECT_EQ(s.Page(), c.turns ? 2 : 1);
        EXPECT_EQ(s.records_of(Kind::NewPage).size(), c.turns ? 1 : 0);
        EXPECT_EQ(s.texts().count(QStringLiteral("VELDO-TALLY")), c.turns ? 2 : 1);
        EXPECT_EQ(s.texts().count(QStringLiteral("PAGE : 2")), c.turns ? 1 : 0);
        EXPECT_EQ(j.progress.pages(), (c.turns ? QList<int>{1, 2} : QList<int>{1}));
        EXPECT_EQ(j.progress.page(), c.turns ? 2 : 1);
    }
}

TEST_F(PageEngineTest, PageEngineHeadBlockThreeColumnsOnThreeLines) {
    drive.run.school_name_2 = QStringLiteral("Paarl");
    head(QStringLiteral("  GRAAD 10 WISKUNDE  "));
    const float w = kPortraitWidth10;
    const QString school = QStringLiteral("Hoerskool Rivierpark (Paarl)");
    const QString title = QStringLiteral("GRAAD 10 WISKUNDE");
    struct Placed {
        QString text;
        float x, y;
    };
    const Placed placed[] = {
        {QStringLiteral("2026.11.23"), 2, 0.75f},
        {QStringLiteral("VELDO-TALLY"), w - 2 - 11, 0.75f},
        {QStringLiteral("14:05:09"), 2, 1.75f},
        {school, (w - school.size()) / 2, 1.75f},
        {QStringLiteral("Debian GNU/Linux 12"), w - 2 - 19, 1.75f},
        {QStringLiteral("PAGE : 1"), 2, 2.75f},
        {title, (w - 17) / 2, 2.75f},
    };
    for (const Placed& p : placed) {
        SCOPED_TRACE(p.text.toStdString());
        EXPECT_FLOAT_EQ(at(p.text).x, p.x);
        EXPECT_FLOAT_EQ(at(p.text).y, p.y);
    }
    EXPECT_FLOAT_EQ(at(title).size, 10.0f);
    EXPECT_FALSE(at(title).bold);
    EXPECT_EQ(at(title).font, QStringLiteral("Lucida Console"));
    EXPECT_FLOAT_EQ(surface.CurrentY(), 6.0f);
    EXPECT_FLOAT_EQ(surface.CurrentX(), 0.0f);
}

TEST_F(PageEngineTest, PageEngineHeadFrameRuleAndBladsyInAfrikaans) {
    drive.run.language_afrikaans = true;
    head();
    EXPECT_EQ(count(QStringLiteral("BLADSY : 1")), 1);
    const auto boxes = surface.records_of(Kind::Box);
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_FLOAT_EQ(boxes[0].x, 0.25f);
    EXPECT_FLOAT_EQ(boxes[0].y, 0.25f);
    EXPECT_FLOAT_EQ(boxes[0].x2, 87.0f);
    EXPECT_FLOAT_EQ(boxes[0].y2, kPortraitHeight10 - 0.7f);
    EXPECT_FLOAT_EQ(job.page_bottom, kPortraitHeight10 - 0.7f);
    const auto lines = surface.records_of(Kind::Line);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_FLOAT_EQ(lines[0].y, kPortraitHeight10 / 12 - 0.5f);
    EXPECT_FLOAT_EQ(lines[0].y2, lines[0].y);
    EXPECT_EQ(job.head_rule_line, 5);
}

TEST_F(PageEngineTest, PageEngineBuildTextOnlyOfThisYear) {
    drive.run.os_build_text = QStringLiteral("2025 build 7");
    head();
    EXPECT_EQ(count(QStringLiteral("2025 build 7")), 0);
    drive.run.os_build_text = QStringLiteral("2026 build 8");
    job.new_print_job = true;
    surface.set_CurrentY(30);
    head();
    EXPECT_FLOAT_EQ(at(QStringLiteral("2026 build 8")).y, 2.75f);
    EXPECT_FLOAT_EQ(at(QStringLiteral("2026 build 8")).x, kPortraitWidth10 - 2 - 12);
}

TEST_F(PageEngineTest, PageEngineLargeTitleIs12Bold) {
    PageHeadOptions o;
    o.large_title = true;
    head(QStringLiteral("OPSTELLING"), QString(), o);
    const PrintRecord title = at(QStringLiteral("OPSTELLING"));
    EXPECT_FLOAT_EQ(title.size, 12.0f);
    EXPECT_TRUE(title.bold);
    // Centred in the scale of size 12: 523 / 7.2 columns.
    EXPECT_FLOAT_EQ(title.x, (523.0f / 7.2f - 10) / 2);
    EXPECT_FALSE(surface.bold());
    EXPECT_FLOAT_EQ(surface.font_size(), 10.0f);
}

TEST_F(PageEngineTest, PageEngineLandscapeTakesTheSubtitleIntoTheTitle) {
    PageHeadOptions o;
    o.paper = kLandscape;
    QString title = QStringLiteral("SIMBOLE");
    QString subtitle = QStringLiteral("  GRAAD 12 ");
    page_head(surface, job, drive.run, title, subtitle, o);
    EXPECT_EQ(title, QStringLiteral("SIMBOLE [GRAAD 12]"));
    EXPECT_TRUE(subtitle.isEmpty());
    EXPECT_FLOAT_EQ(at(title).y, 2.5f);  // the block starts at 0.5 in landscape
    EXPECT_EQ(surface.orientation(), PageOrientation::Landscape);
    // The body goes on at line 6 of the page font, size 8.
    EXPECT_FLOAT_EQ(surface.font_size(), 8.0f);
    EXPECT_FLOAT_EQ(surface.CurrentY(), 6.0f);
    EXPECT_EQ(job.line_width, 160);
}

TEST_F(PageEngineTest, PageEnginePortraitSubtitleGoesUnderTheTitle) {
    QString title = QStringLiteral("PUNTELYS");
    QString subtitle = QStringLiteral("KLAS 10A");
    page_head(surface, job, drive.run, title, subtitle, {});
    EXPECT_EQ(title, QStringLiteral("PUNTELYS"));
    const PrintRecord sub = at(QStringLiteral("KLAS 10A"));
    EXPECT_FLOAT_EQ(sub.y, 3.75f);
    EXPECT_FALSE(sub.bold);
    EXPECT_FLOAT_EQ(sub.x, (kPortraitWidth10 - 8) / 2);

    PageHeadOptions o;
    o.large_title = true;
    job.new_print_job = true;
    surface.set_CurrentY(30);
    subtitle = QStringLiteral("KLAS 10B");
    page_head(surface, job, drive.run, title, subtitle, o);
    const PrintRecord big = at(QStringLiteral("KLAS 10B"));
    EXPECT_TRUE(big.bold);
    EXPECT_FLOAT_EQ(big.size, 10.0f);
    EXPECT_FLOAT_EQ(big.y, 4.25f);  // half a line further down
}

TEST_F(PageEngineTest, PageEngineNoHeadLeavesFrameAndHeadOutButPaintsTheLogo) {
    job.logo_file = drive.path("wapen.png");
    write_bytes(job.logo_file, "png");
    surface.add_picture(job.logo_file);
    PageHeadOptions o;
    o.no_head = true;
    head();  // a first page with a head
    surface.clear_records();
    surface.set_CurrentY(kPortraitHeight10 - 2);
    const auto y = head(QStringLiteral("X"), QString(), o);
    EXPECT_TRUE(surface.records_of(Kind::Box).isEmpty());
    EXPECT_TRUE(surface.records_of(Kind::Line).isEmpty());
    EXPECT_TRUE(surface.texts().isEmpty());
    ASSERT_EQ(surface.records_of(Kind::NewPage).size(), 1);
    const auto pics = surface.records_of(Kind::Picture);
    ASSERT_EQ(pics.size(), 1);
    EXPECT_FLOAT_EQ(pics[0].x, kPortraitWidth10 - 6);
    EXPECT_FLOAT_EQ(pics[0].y, 2.75f);
    EXPECT_FLOAT_EQ(pics[0].x2 - pics[0].x, 4.0f);
    EXPECT_FLOAT_EQ(pics[0].y2 - pics[0].y, 2.0f);
    EXPECT_EQ(y, std::optional<float>(0.0f));  // the body starts where CurrentY stood on the new sheet
}

TEST_F(PageEngineTest, PageEngineLogoInLandscapeAndOnlyWhenTheFileExists) {
    job.logo_file = drive.path("wapen.png");
    surface.add_picture(job.logo_file);
    head();
    EXPECT_TRUE(surface.records_of(Kind::Picture).isEmpty());

    write_bytes(job.logo_file, "png");
    job.new_print_job = true;
    surface.set_CurrentY(40);
    PageHeadOptions o;
    o.paper = kLandscape;
    head(QStringLiteral("X"), QString(), o);
    const auto pics = surface.records_of(Kind::Picture);
    ASSERT_EQ(pics.size(), 1);
    EXPECT_FLOAT_EQ(pics[0].y, 3.0f);
    EXPECT_FLOAT_EQ(pics[0].x2 - pics[0].x, 3.5f);
    EXPECT_FLOAT_EQ(pics[0].y2 - pics[0].y, 1.5f);
}

TEST_F(PageEngineTest, PageEngineEndWithABodyPrintsTheShortBanner) {
    head();
    surface.set_CurrentY(20);
    surface.print_text(QStringLiteral("body"));
    job.new_print_job = true;
    head();
    surface.set_CurrentY(12);
    end_of_print(surface, job, drive.run);

    const QString banner = QStringLiteral("KESTRALIN (Debian GNU/Linux 12)");
    const PrintRecord b = at(banner);
    EXPECT_EQ(b.font, QStringLiteral("ARIAL"));
    EXPECT_FLOAT_EQ(b.size, 8.0f);
    EXPECT_FLOAT_EQ(b.x, 523.0f / 4.8f - banner.size());
    EXPECT_NEAR(b.py, (job.page_bottom - 0.5) * 12.0, 1e-3);  // in lines of size 10
    EXPECT_EQ(b.page, 2);
    EXPECT_EQ(surface.records_of(Kind::EndDoc).size(), 1);
    EXPECT_EQ(surface.pages_ended(), 2);
    EXPECT_FALSE(job.progress.visible());
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text, QStringLiteral("PRINTING COMPLETE (2 pages)"));
    EXPECT_EQ(drive.dialogs.messages[0].icon, MsgIcon::Information);
}

TEST_F(PageEngineTest, PageEngineEndOfAJobWithNothingBelowLine5GetsTheLongLine) {
    drive.run.language_afrikaans = true;
    job.print_job_title = QStringLiteral("OPSTELLING");
    PageHeadOptions o;
    o.no_head = true;
    head(QStringLiteral("X"), QString(), o);
    end_of_print(surface, job, drive.run);
    const QString line = QStringLiteral(
        "OPSTELLING KESTRALIN (  Debian GNU/Linux 12) - Your COMPASS for School Management  (000) 555-0100");
    EXPECT_FLOAT_EQ(at(line).size, 6.0f);
    EXPECT_EQ(surface.find_text(QStringLiteral("KESTRALIN (Debian GNU/Linux 12)")), nullptr);
    EXPECT_EQ(drive.dialogs.texts(), QStringList{QStringLiteral("DRUKWERK VOLTOOI (1 bladsye)")});
}

TEST_F(PageEngineTest, PageEngineNoFootWhenLeftOutOrTooNearTheFoot) {
    head();
    surface.set_CurrentY(30);
    end_of_print(surface, job, drive.run, false, false);
    EXPECT_EQ(surface.find_text(QStringLiteral("KESTRALIN (Debian GNU/Linux 12)")), nullptr);
    EXPECT_FALSE(printed_containing(QStringLiteral("COMPASS")));
    EXPECT_EQ(surface.records_of(Kind::EndDoc).size(), 1);

    // The long line is left out two lines from the foot.
    job.new_print_job = true;
    head();
    surface.set_CurrentY(kPortraitHeight10 - 2);
    end_of_print(surface, job, drive.run, false, true);
    EXPECT_FALSE(printed_containing(QStringLiteral("COMPASS")));
}

TEST_F(PageEngineTest, PageEngineOutputToThePrinterStartsANewJob) {
    job.new_print_job = false;
    surface.print_text(QStringLiteral("left over"));
    job.progress.show(drive.run, QString(), QString(), 7);
    const bool go_on = ask_output_target(surface, job, drive.run, QStringLiteral("OPSTELLING"),
                                         [](PrintJob& j) { j.print_chosen = true; });
    EXPECT_TRUE(go_on);
    EXPECT_EQ(surface.records_of(Kind::EndDoc).size(), 1);  // the old document went out
    EXPECT_TRUE(job.new_print_job);
    EXPECT_EQ(job.print_job_title, QStringLiteral("OPSTELLING"));
    EXPECT_TRUE(job.progress.pages().isEmpty());
    EXPECT_EQ(job.page_font_size, 10);
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
    EXPECT_EQ(surface.records_of(Kind::KillDoc).size(), 1);

    RecordingSurface untouched;
    EXPECT_FALSE(ask_output_target(untouched, job, drive.run, QString(), [](PrintJob& j) { j.print_chosen = false; }));
    EXPECT_TRUE(untouched.records().isEmpty());
}

TEST_F(PageEngineTest, PageEngineExcelHeadGoesToTheWorksheet) {
    job.output_to_excel = true;
    drive.run.os_build_text = QStringLiteral("2026.1");
    QList<SheetHead> heads;
    bool finished = false;
    job.worksheet.sheet_head = [&](const SheetHead& h) { heads.append(h); };
    job.worksheet.finish = [&] { finished = true; };
    QString title = QStringLiteral("PUNTE");
    QString subtitle = QStringLiteral("10A");
    EXPECT_EQ(page_head(surface, job, drive.run, title, subtitle, {}), std::optional<float>(6.0f));
    ASSERT_EQ(heads.size(), 1);
    EXPECT_EQ(heads[0].date, QStringLiteral("2026.11.23"));
    EXPECT_EQ(heads[0].time, QStringLiteral("14:05:09"));
    EXPECT_EQ(heads[0].program, QStringLiteral("VELDO-TALLY"));
    EXPECT_EQ(heads[0].page, QStringLiteral("PAGE : 1"));
    EXPECT_EQ(heads[0].title, QStringLiteral("PUNTE [10A]"));  // in portrait too
    EXPECT_EQ(heads[0].build, QStringLiteral("2026.1"));
    EXPECT_TRUE(surface.records().isEmpty());
    end_of_print(surface, job, drive.run);
    EXPECT_TRUE(finished);
    EXPECT_FALSE(job.output_to_excel);
    EXPECT_TRUE(surface.records().isEmpty());
    EXPECT_TRUE(drive.dialogs.messages.isEmpty());
}
