#include "reports/page_engine.h"

#include <QFile>

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
};

}  // namespace

// ---- Setting up the job --------------------------------------------------------

TEST_F(PageEngineTest, PageEngineSetupPortraitMeasuresTheSheetAtSize10) {
    print_setup(surface, job, drive.run);
    EXPECT_EQ(surface.orientation(), PageOrientation::Portrait);
    EXPECT_EQ(job.page_font_size, 10);
    EXPECT_EQ(job.paper_width, 87);
    EXPECT_EQ(job.line_width, 87);
    EXPECT_EQ(job.line_width_left, 87);
    EXPECT_FLOAT_EQ(job.head_rule_y, kPortraitHeight10 / 12 - 0.5f);
    EXPECT_FLOAT_EQ(job.page_bottom, kPortraitHeight10 - 1.25f);
    EXPECT_EQ(surface.draw_width(), 2);
    EXPECT_EQ(surface.font_name(), QStringLiteral("Lucida Console"));
    EXPECT_FLOAT_EQ(surface.font_size(), 10.0f);
    EXPECT_FALSE(surface.bold());
}

TEST_F(PageEngineTest, PageEngineSetupAnyOtherPaperIsLandscapeAtSize8) {
    print_setup(surface, job, drive.run, QStringLiteral("Letter"));
    EXPECT_EQ(surface.orientation(), PageOrientation::Landscape);
    EXPECT_EQ(job.page_font_size, 8);
    EXPECT_EQ(job.line_width, 160);  // 770 / 4.8 columns at size 8
    EXPECT_EQ(job.paper_width, 160);
    EXPECT_FLOAT_EQ(job.head_rule_y, (523.0f / 9.6f) / 12 + 1);
    // reset_print_font leaves the job at Lucida Console 10.
    EXPECT_FLOAT_EQ(surface.font_size(), 10.0f);
}

TEST_F(PageEngineTest, PageEngineSetupKeepsTheOrientationOfARunningJob) {
    job.new_print_job = false;
    print_setup(surface, job, drive.run, kLandscape);
    EXPECT_EQ(surface.orientation(), PageOrientation::Portrait);
    EXPECT_EQ(job.page_font_size, 8);
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
    EXPECT_FLOAT_EQ(surface.find_text(QStringLiteral("PAGE : 1"))->py, 2.75 * 6);  // half-height lines
}

TEST_F(PageEngineTest, PageEngineResetFontIsLucida10BlackNotBold) {
    surface.set_font_name(QStringLiteral("ARIAL"));
    surface.set_font_size(6);
    surface.set_bold(true);
    surface.set_fore_colour(0xFF);
    surface.set_character_scale(2);
    reset_print_font(surface);
    EXPECT_EQ(surface.font_name(), QStringLiteral("Lucida Console"));
    EXPECT_FLOAT_EQ(surface.font_size(), 10.0f);
    EXPECT_FALSE(surface.bold());
    EXPECT_EQ(surface.fore_colour(), 0);
    EXPECT_FLOAT_EQ(surface.ScaleHeight(), 2 * kPortraitHeight10);  // the scale stays
}

// ---- When a head is written ----------------------------------------------------

TEST_F(PageEngineTest, PageEngineHeadTwiceOnAFreshPageWritesOneHead) {
    EXPECT_EQ(head(), std::optional<float>(6.0f));
    EXPECT_FALSE(job.new_print_job);
    EXPECT_EQ(head(), std::nullopt);
    EXPECT_EQ(count(QStringLiteral("VELDO-TALLY")), 1);
    EXPECT_TRUE(surface.records_of(Kind::NewPage).isEmpty());
    EXPECT_EQ(surface.Page(), 1);
}

TEST_F(PageEngineTest, PageEngineHeadAtFiveLinesFromTheFootStartsAPage) {
    head();
    surface.set_CurrentY(kPortraitHeight10 - 5);
    EXPECT_EQ(head(), std::optional<float>(6.0f));
    EXPECT_EQ(surface.records_of(Kind::NewPage).size(), 1);
    EXPECT_EQ(surface.Page(), 2);
    EXPECT_EQ(count(QStringLiteral("PAGE : 2")), 1);
    EXPECT_EQ(job.progress.pages(), (QList<int>{1, 2}));
    EXPECT_EQ(job.progress.page(), 2);
}

TEST_F(PageEngineTest, PageEngineSetupAfterABannerMeasuresAtTheJobFont) {
    surface.set_font_name(QStringLiteral("ARIAL"));
    surface.set_font_size(6);  // as end_of_print leaves it
    print_setup(surface, job, drive.run);
    EXPECT_EQ(job.paper_width, 87);
}

TEST_F(PageEngineTest, PageEngineHeadJustAboveTheLimitGoesOnOnTheSamePage) {
    head();
    surface.set_CurrentY(kPortraitHeight10 - 5.01f);
    EXPECT_EQ(head(), std::nullopt);
    EXPECT_EQ(surface.Page(), 1);
}

TEST_F(PageEngineTest, PageEngineHeadAtTheTopOfAUsedSheetTurnsThePage) {
    head();
    surface.set_CurrentY(0);  // a form that went back to the top
    head();
    EXPECT_EQ(surface.Page(), 2);
}

TEST_F(PageEngineTest, PageEngineNewJobFlagForcesAPageMidSheet) {
    head();
    surface.set_CurrentY(20);
    job.new_print_job = true;
    EXPECT_EQ(head(), std::optional<float>(6.0f));
    EXPECT_EQ(surface.Page(), 2);
}

// ---- The head block ------------------------------------------------------------

TEST_F(PageEngineTest, PageEngineHeadBlockThreeColumnsOnThreeLines) {
    drive.run.school_name_2 = QStringLiteral("Paarl");
    head(QStringLiteral("  GRAAD 10 WISKUNDE  "));
    const float w = kPortraitWidth10;

    const PrintRecord* date = surface.find_text(QStringLiteral("2026.11.23"));
    ASSERT_NE(date, nullptr);
    EXPECT_FLOAT_EQ(date->x, 2.0f);
    EXPECT_FLOAT_EQ(date->y, 0.75f);
    const PrintRecord* program = surface.find_text(QStringLiteral("VELDO-TALLY"));
    ASSERT_NE(program, nullptr);
    EXPECT_FLOAT_EQ(program->x, w - 2 - 11);
    EXPECT_FLOAT_EQ(program->y, 0.75f);

    const PrintRecord* time = surface.find_text(QStringLiteral("14:05:09"));
    ASSERT_NE(time, nullptr);
    EXPECT_FLOAT_EQ(time->y, 1.75f);
    const QString school = QStringLiteral("Hoerskool Rivierpark (Paarl)");
    const PrintRecord* s = surface.find_text(school);
    ASSERT_NE(s, nullptr);
    EXPECT_FLOAT_EQ(s->x, (w - school.size()) / 2);
    const PrintRecord* os = surface.find_text(QStringLiteral("Debian GNU/Linux 12"));
    ASSERT_NE(os, nullptr);
    EXPECT_FLOAT_EQ(os->x, w - 2 - 19);
    EXPECT_FLOAT_EQ(os->y, 1.75f);

    const PrintRecord* page = surface.find_text(QStringLiteral("PAGE : 1"));
    ASSERT_NE(page, nullptr);
    EXPECT_FLOAT_EQ(page->x, 2.0f);
    EXPECT_FLOAT_EQ(page->y, 2.75f);
    const PrintRecord* title = surface.find_text(QStringLiteral("GRAAD 10 WISKUNDE"));
    ASSERT_NE(title, nullptr);
    EXPECT_FLOAT_EQ(title->y, 2.75f);
    EXPECT_FLOAT_EQ(title->x, (w - 17) / 2);
    EXPECT_FLOAT_EQ(title->size, 10.0f);
    EXPECT_FALSE(title->bold);
    EXPECT_EQ(title->font, QStringLiteral("Lucida Console"));

    EXPECT_FLOAT_EQ(surface.CurrentY(), 6.0f);
    EXPECT_FLOAT_EQ(surface.CurrentX(), 0.0f);
}

TEST_F(PageEngineTest, PageEngineHeadInAfrikaansCountsBladsy) {
    drive.run.language_afrikaans = true;
    head();
    EXPECT_EQ(count(QStringLiteral("BLADSY : 1")), 1);
}

TEST_F(PageEngineTest, PageEngineHeadFrameAndRule) {
    head();
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
    const PrintRecord* build = surface.find_text(QStringLiteral("2026 build 8"));
    ASSERT_NE(build, nullptr);
    EXPECT_FLOAT_EQ(build->y, 2.75f);
    EXPECT_FLOAT_EQ(build->x, kPortraitWidth10 - 2 - 12);
}

TEST_F(PageEngineTest, PageEngineLargeTitleIs12Bold) {
    PageHeadOptions o;
    o.large_title = true;
    head(QStringLiteral("OPSTELLING"), QString(), o);
    const PrintRecord* title = surface.find_text(QStringLiteral("OPSTELLING"));
    ASSERT_NE(title, nullptr);
    EXPECT_FLOAT_EQ(title->size, 12.0f);
    EXPECT_TRUE(title->bold);
    // Centred in the scale of size 12: 523 / 7.2 columns.
    EXPECT_FLOAT_EQ(title->x, (523.0f / 7.2f - 10) / 2);
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
    const PrintRecord* t = surface.find_text(title);
    ASSERT_NE(t, nullptr);
    EXPECT_FLOAT_EQ(t->y, 2.5f);  // the block starts at 0.5 in landscape
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
    const PrintRecord* sub = surface.find_text(QStringLiteral("KLAS 10A"));
    ASSERT_NE(sub, nullptr);
    EXPECT_FLOAT_EQ(sub->y, 3.75f);
    EXPECT_FALSE(sub->bold);
    EXPECT_FLOAT_EQ(sub->x, (kPortraitWidth10 - 8) / 2);

    PageHeadOptions o;
    o.large_title = true;
    job.new_print_job = true;
    surface.set_CurrentY(30);
    subtitle = QStringLiteral("KLAS 10B");
    page_head(surface, job, drive.run, title, subtitle, o);
    const PrintRecord* big = surface.find_text(QStringLiteral("KLAS 10B"));
    ASSERT_NE(big, nullptr);
    EXPECT_TRUE(big->bold);
    EXPECT_FLOAT_EQ(big->size, 10.0f);
    EXPECT_FLOAT_EQ(big->y, 4.25f);  // half a line further down
}

// ---- No head, and the crest ----------------------------------------------------

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
    ASSERT_TRUE(y.has_value());
    EXPECT_FLOAT_EQ(*y, 0.0f);  // the body starts where CurrentY stood on the new sheet
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

// ---- Closing the job -----------------------------------------------------------

TEST_F(PageEngineTest, PageEngineEndWithABodyPrintsTheShortBanner) {
    head();
    surface.set_CurrentY(20);
    surface.print_text(QStringLiteral("body"));
    job.new_print_job = true;
    head();
    surface.set_CurrentY(12);
    end_of_print(surface, job, drive.run);

    const QString banner = QStringLiteral("KESTRALIN (Debian GNU/Linux 12)");
    const PrintRecord* b = surface.find_text(banner);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->font, QStringLiteral("ARIAL"));
    EXPECT_FLOAT_EQ(b->size, 8.0f);
    EXPECT_FLOAT_EQ(b->x, 523.0f / 4.8f - banner.size());
    EXPECT_NEAR(b->py, (job.page_bottom - 0.5) * 12.0, 1e-3);  // in lines of size 10
    EXPECT_EQ(b->page, 2);
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
    const PrintRecord* r = surface.find_text(line);
    ASSERT_NE(r, nullptr);
    EXPECT_FLOAT_EQ(r->size, 6.0f);
    EXPECT_EQ(surface.find_text(QStringLiteral("KESTRALIN (Debian GNU/Linux 12)")), nullptr);
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text, QStringLiteral("DRUKWERK VOLTOOI (1 bladsye)"));
}

TEST_F(PageEngineTest, PageEngineEndWithoutBannerOrMessagePrintsNoFoot) {
    head();
    surface.set_CurrentY(30);
    end_of_print(surface, job, drive.run, false, false);
    EXPECT_EQ(surface.find_text(QStringLiteral("KESTRALIN (Debian GNU/Linux 12)")), nullptr);
    for (const QString& t : surface.texts()) EXPECT_FALSE(t.contains(QStringLiteral("COMPASS")));
    EXPECT_EQ(surface.records_of(Kind::EndDoc).size(), 1);
}

TEST_F(PageEngineTest, PageEngineLongLineLeftOutNearTheFoot) {
    head();
    surface.set_CurrentY(kPortraitHeight10 - 2);
    end_of_print(surface, job, drive.run, false, true);
    for (const QString& t : surface.texts()) EXPECT_FALSE(t.contains(QStringLiteral("COMPASS")));
}

// ---- Choosing the output --------------------------------------------------------

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

TEST_F(PageEngineTest, PageEngineOutputToExcelDiscardsThePrinterDocument) {
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
}

TEST_F(PageEngineTest, PageEngineCancelledOutputPrintsNothing) {
    EXPECT_FALSE(ask_output_target(surface, job, drive.run, QString(), [](PrintJob& j) { j.print_chosen = false; }));
    EXPECT_TRUE(surface.records().isEmpty());
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
