#include "reports/worksheet.h"

#include <gtest/gtest.h>

#include "tests/support/unprivileged.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <zip.h>

#include "markbook/workbook_reader.h"
#include "reports/output_target.h"
#include "reports/grid_report.h"
#include "reports/page_engine.h"
#include "reports/recording_surface.h"
#include "tests/support/temp_drive.h"
#include "util/text_grid.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::read_bytes;
using testing::write_bytes;

// One part of a saved workbook, as text.
QString zip_entry(const QString& path, const char* name) {
    int code = 0;
    zip_t* z = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &code);
    if (!z) return QString();
    QByteArray out;
    if (zip_file_t* f = zip_fopen(z, name, 0)) {
        char buf[4096];
        zip_int64_t n;
        while ((n = zip_fread(f, buf, sizeof buf)) > 0) out.append(buf, qsizetype(n));
        zip_fclose(f);
    }
    zip_close(z);
    return QString::fromUtf8(out);
}

SheetHead head(const QString& page, const QString& title) {
    SheetHead h;
    h.date = "2026.11.23";
    h.time = "14:05:00";
    h.school = "HOëRSKOOL DIE KRANS (PRETORIA)";
    h.program = kProgramTitle;
    h.os_product = "Debian GNU/Linux 13";
    h.page = page;
    h.title = title;
    h.build = "";
    return h;
}

// A small list as a report fills it: names, an upright heading, marks.
TextGrid mark_list() {
    TextGrid g(4, 4);
    g.set_fixed_cols(0);
    g.set_format_string("<Naam|>~~R~~Punt|>Nr|<Kode");
    g.set_text(1, 0, "ABRAHAMS, JAN");
    g.set_text(1, 1, " 45.5");
    g.set_text(1, 2, "'0123456789012");
    g.set_text(1, 3, "a\u00a6a");
    g.set_text(2, 0, "BOTHA, ANNA");
    g.set_text(2, 1, "A");
    g.set_text(2, 2, "12345678901");
    g.set_text(2, 3, "007");
    g.set_text(3, 0, "CELE, SIPHO");
    g.set_text(3, 1, "-3");
    g.set_text(3, 2, "12a");
    g.set_cell_back_colour(3, 1, 0x0000FF);  // red, as 0xBBGGRR
    return g;
}

class WorksheetTest : public ::testing::Test {
protected:
    TempDrive drive;
    QString out_folder() const { return drive.path("uitvoer") + "/"; }
    void SetUp() override { QDir().mkpath(drive.path("uitvoer")); }
};

// ---- column letters ---------------------------------------------------------

TEST(ColumnLetters, OneLetterUpToZ) {
    EXPECT_EQ(column_letters(1), "A");
    EXPECT_EQ(column_letters(2), "B");
    EXPECT_EQ(column_letters(26), "Z");
}

TEST(ColumnLetters, TwoLettersByWholeDivisionAndRemainder) {
    EXPECT_EQ(column_letters(27), "AA");
    EXPECT_EQ(column_letters(51), "AY");
    // 52 = 2 * 26 + 0: the remainder's letter is character 64.
    EXPECT_EQ(column_letters(52), "B@");
    EXPECT_EQ(column_letters(53), "BA");
    EXPECT_EQ(column_letters(78), "C@");
    EXPECT_EQ(column_letters(79), "CA");
}

TEST(ColumnLetters, NothingBelowOne) {
    EXPECT_EQ(column_letters(0), "");
    EXPECT_EQ(column_letters(-5), "");
}

// ---- cell texts ---------------------------------------------------------------

TEST(WorksheetCells, PlainDecimalNumbersBecomeNumbers) {
    auto c = sheet_cell_from_text(" 45.5");
    EXPECT_TRUE(c.is_number);
    EXPECT_DOUBLE_EQ(c.number, 45.5);
    EXPECT_TRUE(sheet_cell_from_text("-3").is_number);
    EXPECT_TRUE(sheet_cell_from_text("0").is_number);
    EXPECT_TRUE(sheet_cell_from_text("0.5").is_number);
    EXPECT_FALSE(sheet_cell_from_text("12a").is_number);
    EXPECT_FALSE(sheet_cell_from_text("A").is_number);
    EXPECT_FALSE(sheet_cell_from_text("1,5").is_number);
    EXPECT_FALSE(sheet_cell_from_text("1E5").is_number);
    EXPECT_FALSE(sheet_cell_from_text("").is_number);
}

TEST(WorksheetCells, LeadingZerosStayText) {
    auto c = sheet_cell_from_text("007");
    EXPECT_FALSE(c.is_number);
    EXPECT_EQ(c.text, "007");
}

TEST(WorksheetCells, LongNumbersGetThirteenDigits) {
    auto quoted = sheet_cell_from_text("'0123456789012");
    EXPECT_FALSE(quoted.is_number);
    EXPECT_EQ(quoted.text, "0123456789012");
    EXPECT_TRUE(quoted.thirteen_digits);

    auto big = sheet_cell_from_text("12345678901");
    EXPECT_TRUE(big.is_number);
    EXPECT_TRUE(big.thirteen_digits);
    EXPECT_FALSE(sheet_cell_from_text("9999999999").thirteen_digits);
}

TEST(WorksheetCells, SentinelIsEmpty) {
    EXPECT_EQ(sheet_cell_from_text("a\u00a6a").text, "");
    EXPECT_EQ(sheet_cell_from_text(" a\u00a6a ").text, "");
}

TEST(WorksheetCells, ForcedLineBreakWraps) {
    auto c = sheet_cell_from_text("EEN~NL~TWEE");
    EXPECT_EQ(c.text, "EEN\nTWEE");
    EXPECT_TRUE(c.wrap);
}

// ---- heads and grids ------------------------------------------------------------

TEST_F(WorksheetTest, HeadGoesToItsCellsAndTheBodyStartsAtRowSix) {
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "MARK LIST [GR 8A]"));
    EXPECT_EQ(book.excel_row(), 6);
    EXPECT_EQ(book.excel_sheet_number(), 1);
    ASSERT_TRUE(book.save_to(out_folder() + "kop.xlsx", nullptr));

    const auto rows = read_first_sheet(out_folder() + "kop.xlsx");
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->size(), 3);
    EXPECT_EQ(rows->at(0), (QStringList{"2026.11.23", "", "", "", "VELDO-TALLY"}));
    EXPECT_EQ(rows->at(1), (QStringList{"14:05:00", "", "HOëRSKOOL DIE KRANS (PRETORIA)", "", "Debian GNU/Linux 13"}));
    EXPECT_EQ(rows->at(2), (QStringList{"PAGE : 1", "", "MARK LIST [GR 8A]"}));
}

TEST_F(WorksheetTest, HeadTextsFromThePageEngine) {
    drive.run.language_afrikaans = true;
    drive.run.school_name = "HOëRSKOOL DIE KRANS";
    drive.run.os_product_name = "Debian";
    WorkbookOutput book(drive.run);
    SheetHead h = head("BLADSY : 2", "PUNTELYS");
    h.build = "2026 build";
    book.begin_sheet_head(h);
    const auto& cells = book.sheets().back().cells;
    EXPECT_EQ(cells.at({3, 1}).text, "BLADSY : 2");
    EXPECT_EQ(cells.at({3, 3}).text, "PUNTELYS");
    EXPECT_EQ(cells.at({3, 5}).text, "2026 build");
    EXPECT_EQ(cells.count({1, 3}), 0u);
}

TEST_F(WorksheetTest, EachHeadStartsTheNextSheet) {
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "A"));
    TextGrid g = mark_list();
    book.write_grid_to_sheet(g);
    book.begin_sheet_head(head("PAGE : 2", "B"));
    EXPECT_EQ(book.excel_sheet_number(), 2);
    EXPECT_EQ(book.excel_row(), 6);
    ASSERT_TRUE(book.save_to(out_folder() + "twee.xlsx", nullptr));
    const QString workbook = zip_entry(out_folder() + "twee.xlsx", "xl/workbook.xml");
    EXPECT_TRUE(workbook.contains("name=\"Sheet1\""));
    EXPECT_TRUE(workbook.contains("name=\"Sheet2\""));
}

TEST_F(WorksheetTest, GridCellsReadBackBelowTheHead) {
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "LIST"));
    TextGrid g = mark_list();
    book.write_grid_to_sheet(g);
    EXPECT_EQ(book.excel_row(), 10);  // rows 6 to 9 written
    const QString path = out_folder() + "lys.xlsx";
    ASSERT_TRUE(book.save_to(path, nullptr));

    const auto rows = read_first_sheet(path);
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->size(), 9);
    EXPECT_EQ(rows->at(4), QStringList());
    EXPECT_EQ(rows->at(5), (QStringList{"Naam", "Punt", "Nr", "Kode"}));
    EXPECT_EQ(rows->at(6), (QStringList{"ABRAHAMS, JAN", "45.5", "0123456789012"}));  // "a¦a" is empty
    EXPECT_EQ(rows->at(7), (QStringList{"BOTHA, ANNA", "A", "12345678901", "007"}));
    EXPECT_EQ(rows->at(8), (QStringList{"CELE, SIPHO", "-3", "12a"}));

    // Numbers as numbers, the rest as shared strings.
    const QString sheet = zip_entry(path, "xl/worksheets/sheet1.xml");
    EXPECT_TRUE(sheet.contains(QRegularExpression("<c r=\"B7\"( s=\"\\d+\")?><v>45.5</v>")));
    EXPECT_TRUE(sheet.contains(QRegularExpression("<c r=\"C8\"( s=\"\\d+\")?><v>12345678901</v>")));
    EXPECT_TRUE(sheet.contains(QRegularExpression("<c r=\"D8\"( s=\"\\d+\")? t=\"s\">")));
    EXPECT_TRUE(sheet.contains(QRegularExpression("<c r=\"C7\"( s=\"\\d+\")? t=\"s\">")));
    EXPECT_FALSE(sheet.contains("r=\"D7\""));
}

TEST_F(WorksheetTest, StylesCarryRotationFormatFillAndArial) {
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "LIST"));
    TextGrid g = mark_list();
    book.write_grid_to_sheet(g);
    const QString path = out_folder() + "styl.xlsx";
    ASSERT_TRUE(book.save_to(path, nullptr));

    const QString styles = zip_entry(path, "xl/styles.xml");
    EXPECT_TRUE(styles.contains("textRotation=\"90\""));
    EXPECT_TRUE(styles.contains("formatCode=\"0000000000000\""));
    EXPECT_TRUE(styles.contains("rgb=\"FFFF0000\""));  // 0xBBGGRR red as ARGB
    EXPECT_TRUE(styles.contains("<name val=\"Arial\"/>"));
    EXPECT_TRUE(styles.contains("<sz val=\"8.25\"/>"));  // the grid's font size

    // The upright heading raises its row; the columns are fitted.
    const QString sheet = zip_entry(path, "xl/worksheets/sheet1.xml");
    EXPECT_TRUE(sheet.contains(QRegularExpression("<row r=\"6\"[^>]*customHeight=\"1\"")));
    EXPECT_TRUE(sheet.contains("<cols>"));
}

TEST_F(WorksheetTest, FittedWidthsFollowTheLongestText) {
    WorkbookOutput book(drive.run);
    TextGrid g(3, 3);
    g.set_fixed_cols(0);
    g.set_format_string("<A|~~R~~A VERY LONG UPRIGHT HEADING|<C");
    g.set_text(1, 0, "SHORT");
    g.set_text(2, 0, "A MUCH LONGER NAME HERE");
    g.set_text(1, 1, "1");
    g.set_text(1, 2, "XX");
    book.write_grid_to_sheet(g);
    const auto widths = WorkbookOutput::fitted_widths(book.sheets().back());
    ASSERT_EQ(widths.size(), 3u);
    EXPECT_GT(widths[0], widths[2]);
    // Upright headings don't count toward a width.
    EXPECT_LT(widths[1], 5.0);
    EXPECT_GE(widths[1], 2.0);
}

TEST_F(WorksheetTest, ZeroWidthColumnsAreHidden) {
    WorkbookOutput book(drive.run);
    TextGrid g = mark_list();
    g.set_col_width(3, 0);
    book.write_grid_to_sheet(g);
    ASSERT_TRUE(book.save_to(out_folder() + "versteek.xlsx", nullptr));
    const QString sheet = zip_entry(out_folder() + "versteek.xlsx", "xl/worksheets/sheet1.xml");
    EXPECT_TRUE(sheet.contains(QRegularExpression("<col min=\"4\" max=\"4\"[^>]*hidden=\"1\"")));
}

TEST_F(WorksheetTest, AGridWithoutAHeadStartsAtTheTop) {
    WorkbookOutput book(drive.run);
    TextGrid g = mark_list();
    book.write_grid_to_sheet(g);
    EXPECT_EQ(book.excel_sheet_number(), 1);
    EXPECT_EQ(book.excel_row(), 5);
    ASSERT_TRUE(book.save_to(out_folder() + "los.xlsx", nullptr));
    const auto rows = read_first_sheet(out_folder() + "los.xlsx");
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->at(0).value(0), "Naam");
}

// ---- saving ---------------------------------------------------------------------

TEST_F(WorksheetTest, SaveTellsTheUserInEnglish) {
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "LIST"));
    ASSERT_TRUE(book.save(out_folder(), "Punte 8A"));
    EXPECT_TRUE(QFileInfo::exists(out_folder() + "Punte 8A.xlsx"));
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text,
              "EXPORT OF Punte 8A TO " + out_folder() + "Punte 8A COMPLETE !!");
    EXPECT_EQ(drive.dialogs.messages[0].icon, MsgIcon::Information);
}

TEST_F(WorksheetTest, SaveTellsTheUserInAfrikaans) {
    drive.run.language_afrikaans = true;
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("BLADSY : 1", "LYS"));
    ASSERT_TRUE(book.save(out_folder(), "punte"));
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text, "UITVOER VAN punte NA " + out_folder() + "punte VOLTOOI !!");
    EXPECT_EQ(drive.dialogs.messages[0].icon, MsgIcon::Information);
}

TEST_F(WorksheetTest, AnOldWorkbookIsReplaced) {
    write_bytes(out_folder() + "ou.xlsx", "old bytes");
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "NEW"));
    ASSERT_TRUE(book.save(out_folder(), "ou"));
    const auto rows = read_first_sheet(out_folder() + "ou.xlsx");
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->at(2).value(2), "NEW");
    // No scratch file is left beside it.
    EXPECT_EQ(QDir(out_folder()).entryList(QDir::Files), QStringList{"ou.xlsx"});
}

TEST_F(WorksheetTest, AMissingFolderIsReportedAndNothingWritten) {
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "LIST"));
    const QString missing = drive.path("weg") + "/";
    EXPECT_FALSE(book.save(missing, "punte"));
    EXPECT_FALSE(QFileInfo::exists(missing));
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_TRUE(drive.dialogs.messages[0].text.startsWith("FOLDER " + drive.path("weg") + " DOES NOT EXIST"));
    EXPECT_EQ(drive.dialogs.messages[0].icon, MsgIcon::Exclamation);

    // The workbook is still there: saving it elsewhere works.
    drive.dialogs.messages.clear();
    EXPECT_TRUE(book.save(out_folder(), "punte"));
    EXPECT_TRUE(QFileInfo::exists(out_folder() + "punte.xlsx"));
}

TEST_F(WorksheetTest, AMissingFolderInAfrikaans) {
    drive.run.language_afrikaans = true;
    WorkbookOutput book(drive.run);
    EXPECT_FALSE(book.save(drive.path("weg") + "/", "punte"));
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_TRUE(drive.dialogs.messages[0].text.startsWith("GIDS " + drive.path("weg") + " BESTAAN NIE"));
}

TEST_F(WorksheetTest, AReadOnlyWorkbookIsLeftAsItWas) {
    const QString path = out_folder() + "vas.xlsx";
    write_bytes(path, "kept");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup);
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "LIST"));
    EXPECT_FALSE(book.save(out_folder(), "vas"));
    EXPECT_EQ(read_bytes(path), "kept");
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text, path + " IS READ-ONLY - vas WAS NOT SAVED !!");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
}

TEST_F(WorksheetTest, AWorkbookOpenElsewhereIsLeftAsItWas) {
    const QString path = out_folder() + "oop.xlsx";
    write_bytes(path, "kept");
    write_bytes(out_folder() + ".~lock.oop.xlsx#", "someone,host");
    drive.run.language_afrikaans = true;
    WorkbookOutput book(drive.run);
    EXPECT_FALSE(book.save(out_folder(), "oop"));
    EXPECT_EQ(read_bytes(path), "kept");
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text,
              path + " IS OOP IN 'N ANDER PROGRAM - MAAK DIT TOE EN PROBEER WEER !!");
}

TEST_F(WorksheetTest, AReadOnlyFolderIsReported) {
    if (veldo::testing::rerun_unprivileged()) return;
    const QString folder = drive.path("slot");
    QDir().mkpath(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
    WorkbookOutput book(drive.run);
    EXPECT_FALSE(book.save(folder + "/", "punte"));
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_TRUE(drive.dialogs.messages[0].text.startsWith("COULD NOT WRITE "));
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// ---- the page engine's hooks -------------------------------------------------------

TEST_F(WorksheetTest, HooksFillOneWorkbookPerJobAndSaveItAtTheEnd) {
    PrintJob job;
    job.output_to_excel = true;
    job.export_folder = out_folder();
    job.export_stem = "werk";
    install_worksheet_hooks(job, drive.run);
    ASSERT_TRUE(job.worksheet.sheet_head && job.worksheet.write_grid && job.worksheet.finish);

    job.worksheet.sheet_head(head("PAGE : 1", "FIRST"));
    TextGrid g = mark_list();
    job.worksheet.write_grid(g);
    job.worksheet.sheet_head(head("PAGE : 2", "SECOND"));
    job.worksheet.finish();

    const auto rows = read_first_sheet(out_folder() + "werk.xlsx");
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->at(2).value(2), "FIRST");
    EXPECT_EQ(rows->at(6).value(0), "ABRAHAMS, JAN");
    EXPECT_TRUE(zip_entry(out_folder() + "werk.xlsx", "xl/workbook.xml").contains("name=\"Sheet2\""));
    EXPECT_EQ(drive.dialogs.texts(), QStringList{"EXPORT OF werk TO " + out_folder() + "werk COMPLETE !!"});

    // The next job starts a workbook of its own.
    job.export_stem = "volgende";
    job.worksheet.sheet_head(head("PAGE : 1", "AGAIN"));
    job.worksheet.finish();
    EXPECT_FALSE(zip_entry(out_folder() + "volgende.xlsx", "xl/workbook.xml").contains("Sheet2"));
    // A finish without a sheet writes nothing.
    drive.dialogs.messages.clear();
    job.worksheet.finish();
    EXPECT_TRUE(drive.dialogs.messages.isEmpty());
}

TEST_F(WorksheetTest, HooksOfferAnotherPlaceWhenTheFolderIsGone) {
    PrintJob job;
    job.output_to_excel = true;
    job.export_folder = drive.path("weg") + "/";
    job.export_stem = "werk";
    install_worksheet_hooks(job, drive.run);
    job.worksheet.sheet_head(head("PAGE : 1", "KEPT"));
    drive.dialogs.files.enqueue(out_folder() + "elders.xlsx");
    job.worksheet.finish();

    ASSERT_EQ(drive.dialogs.messages.size(), 2);
    EXPECT_TRUE(drive.dialogs.messages[0].text.startsWith("FOLDER " + drive.path("weg") + " DOES NOT EXIST"));
    EXPECT_EQ(drive.dialogs.prompts, QStringList{"EXCEL EXPORT FILE NAME"});
    EXPECT_EQ(drive.dialogs.messages[1].text, "EXPORT OF elders TO " + out_folder() + "elders COMPLETE !!");
    const auto rows = read_first_sheet(out_folder() + "elders.xlsx");
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->at(2).value(2), "KEPT");
}

TEST_F(WorksheetTest, HooksStopWhenTheUserGivesUp) {
    PrintJob job;
    job.export_folder = drive.path("weg") + "/";
    job.export_stem = "werk";
    install_worksheet_hooks(job, drive.run);
    job.worksheet.sheet_head(head("PAGE : 1", "LOST"));
    job.worksheet.finish();  // no file chosen
    EXPECT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.prompts.size(), 1);
    EXPECT_FALSE(QFileInfo::exists(drive.path("weg")));
}

TEST_F(WorksheetTest, HookForAGridStraightToAFileAsksTheName) {
    PrintJob job;
    install_worksheet_hooks(job, drive.run);
    drive.dialogs.files.enqueue(out_folder() + "los.xlsx");
    TextGrid g = mark_list();
    job.worksheet.grid_to_new_file(g);
    EXPECT_EQ(job.export_folder, out_folder());
    EXPECT_EQ(job.export_stem, "los");
    const auto rows = read_first_sheet(out_folder() + "los.xlsx");
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->at(0).value(0), "Naam");

    // Cancelled: nothing written, nothing said.
    drive.dialogs.messages.clear();
    job.worksheet.grid_to_new_file(g);
    EXPECT_TRUE(drive.dialogs.messages.isEmpty());
}

TEST_F(WorksheetTest, AReportThroughThePageEngineLandsInTheWorkbook) {
    drive.run.school_name = "DIE KRANS";
    PrintJob job;
    job.fixed_time = QTime(9, 30, 0);
    install_worksheet_hooks(job, drive.run);
    OutputChoice choice;
    choice.output_to_excel = true;
    choice.export_folder = out_folder();
    choice.export_stem = "verslag";
    apply_output_choice(choice, job);
    job.new_print_job = true;

    RecordingSurface surface;
    TextGrid g = mark_list();
    QString title = "MARK LIST", subtitle = "GR 8A";
    page_head(surface, job, drive.run, title, subtitle);
    print_grid_report(surface, job, g);
    end_of_print(surface, job, drive.run);

    EXPECT_FALSE(job.output_to_excel);
    const auto rows = read_first_sheet(out_folder() + "verslag.xlsx");
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->at(0).value(0), "2026.11.23");
    EXPECT_EQ(rows->at(1).value(0), "09:30:00");
    EXPECT_EQ(rows->at(1).value(2), "DIE KRANS");
    EXPECT_EQ(rows->at(2).value(0), "PAGE : 1");
    EXPECT_EQ(rows->at(2).value(2), "MARK LIST [GR 8A]");
    EXPECT_EQ(rows->at(5).value(0), "Naam");
    EXPECT_EQ(drive.dialogs.texts(), QStringList{"EXPORT OF verslag TO " + out_folder() + "verslag COMPLETE !!"});
}

TEST_F(WorksheetTest, AFileInTheWayOfTheWorkbookIsReported) {
    // A folder under the workbook's name can't be replaced by a file.
    QDir().mkpath(out_folder() + "gids.xlsx");
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "LIST"));
    EXPECT_FALSE(book.save(out_folder(), "gids"));
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text,
              "COULD NOT WRITE " + out_folder() + "gids.xlsx - gids WAS NOT SAVED !!");
    EXPECT_TRUE(QFileInfo(out_folder() + "gids.xlsx").isDir());
}

// ---- LibreOffice ----------------------------------------------------------------------

TEST_F(WorksheetTest, LibreOfficeOpensTheWorkbook) {
    const QString soffice = QStandardPaths::findExecutable("soffice");
    if (soffice.isEmpty()) GTEST_SKIP() << "soffice is not installed";
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "LIST"));
    TextGrid g = mark_list();
    book.write_grid_to_sheet(g);
    ASSERT_TRUE(book.save_to(out_folder() + "lo.xlsx", nullptr));

    QTemporaryDir profile;
    QProcess p;
    p.start(soffice, {"-env:UserInstallation=file://" + profile.path(), "--headless", "--convert-to", "csv",
                      "--outdir", drive.path("csv"), out_folder() + "lo.xlsx"});
    ASSERT_TRUE(p.waitForFinished(120000));
    const QByteArray csv = read_bytes(drive.path("csv/lo.csv"));
    EXPECT_TRUE(csv.contains("ABRAHAMS, JAN"));
    EXPECT_TRUE(csv.contains("0123456789012"));
}

}  // namespace
}  // namespace veldo
