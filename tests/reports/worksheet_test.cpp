#include "reports/worksheet.h"

#include <gtest/gtest.h>

#include "tests/support/unprivileged.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <zip.h>

#include "markbook/workbook_reader.h"
#include "reports/page_engine.h"
#include "tests/support/golden.h"
#include "tests/support/temp_drive.h"
#include "util/text_grid.h"

namespace veldo {
namespace {

using namespace testing;

// One part of a saved workbook, one XML element to a line.
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
    return QString::fromUtf8(out).replace("><", ">\n<") + "\n";
}

SheetHead head(const QString& page, const QString& title) {
    return SheetHead{"2026.11.23", "14:05:00", "HOëRSKOOL DIE KRANS (PRETORIA)", kProgramTitle, "Debian GNU/Linux 13",
                     page, title, ""};
}

// A small list as a report fills it: names, marks under an upright heading
// wider than any of them (it takes no width), numbers, codes.
TextGrid mark_list() {
    TextGrid g(1, 4);
    g.set_fixed_cols(0);
    g.set_format_string("<Naam|>~~R~~Punt van die klas|>Nr|<Kode");
    for (const char* row : {"ABRAHAMS, JAN\t 45.5\t'0123456789012\ta\u00a6a", "BOTHA, ANNA\tA\t12345678901\t007",
                            "CELE, SIPHO\t-3\t12a\t"})
        g.add_item(QString::fromUtf8(row));
    g.set_cell_back_colour(3, 1, 0x0000FF);  // red, as 0xBBGGRR
    return g;
}

class WorksheetTest : public ::testing::Test {
protected:
    TempDrive drive;
    QString out_folder() const { return drive.path("uitvoer") + "/"; }
    void SetUp() override { QDir().mkpath(drive.path("uitvoer")); }
    // A cell of the first sheet of a workbook in the output folder, both from 0.
    QString cell(const QString& name, int row, int col) const {
        const auto rows = read_first_sheet(out_folder() + name);
        EXPECT_TRUE(rows) << name.toStdString();
        return rows.value_or(QList<QStringList>()).value(row).value(col);
    }
    // A job whose worksheet hooks save to `folder` as `stem`.
    PrintJob job;
    void hooks(const QString& folder, const QString& stem) {
        job.export_folder = folder;
        job.export_stem = stem;
        install_worksheet_hooks(job, drive.run);
    }
    // What the user was told since the last look, "i " before a notice and
    // "! " before a warning, then what he was asked.
    QStringList said() {
        QStringList out;
        for (const auto& m : drive.dialogs.messages)
            out << (m.icon == MsgIcon::Information ? "i " : m.icon == MsgIcon::Exclamation ? "! " : "? ") + m.text;
        out += drive.dialogs.prompts;
        drive.dialogs.messages.clear();
        drive.dialogs.prompts.clear();
        return out;
    }
};

TEST(ColumnLetters, OneLetterUpToZThenWholeDivisionAndRemainderNothingBelowOne) {
    // 52 = 2 * 26 + 0: the remainder's letter is character 64.
    const std::pair<int, const char*> cases[] = {{1, "A"},   {2, "B"},   {26, "Z"},  {27, "AA"}, {51, "AY"}, {52, "B@"},
                                                 {53, "BA"}, {78, "C@"}, {79, "CA"}, {0, ""},    {-5, ""}};
    for (const auto& [n, letters] : cases) EXPECT_EQ(column_letters(n), letters) << n;
}

TEST(WorksheetCells, PlainDecimalsBecomeNumbersAndTheRestStaysText) {
    // What a cell becomes: "number" or "text", what it shows, and its flags.
    const auto kind = [](const WorkbookOutput::Cell& c) {
        return QString(c.is_number ? "number " : "text ") + c.text + (c.thirteen_digits ? " 13 digits" : "") +
               (c.wrap ? " wraps" : "");
    };
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {" 45.5", "number 45.5", "a plain decimal, trimmed"},
        {"-3", "number -3", "a sign"},
        {"0", "number 0", "zero"},
        {"0.5", "number 0.5", "a zero before the point"},
        {"12a", "text 12a", "a letter after the digits"},
        {"A", "text A", "an absence"},
        {"1,5", "text 1,5", "a decimal comma"},
        {"1E5", "text 1E5", "an exponent"},
        {"", "text ", "empty"},
        {"007", "text 007", "a leading zero stays text"},
        {"'0123456789012", "text 0123456789012 13 digits", "a quoted long number"},
        {"12345678901", "number 12345678901 13 digits", "above ten digits"},
        {"9999999999", "number 9999999999", "ten digits"},
        {"a\u00a6a", "text ", "the sentinel is empty"},
        {" a\u00a6a ", "text ", "the sentinel between blanks"},
        {"EEN~NL~TWEE", "text EEN\nTWEE wraps", "a forced line break wraps"},
    };
    for (const auto& [text, expected, why] : cases)
        EXPECT_EQ(kind(sheet_cell_from_text(QString::fromUtf8(text))), QString::fromUtf8(expected)) << why;
    EXPECT_DOUBLE_EQ(sheet_cell_from_text(" 45.5").number, 45.5);
}

// The sheet's XML, texts and styles as written: numbers as numbers, the rest
// as shared strings ("a\u00a6a" as nothing), the upright heading raising its
// row, the columns fitted to their longest text, a long number in 13 digits,
// the cell's red as ARGB, Arial at the grid's 8.25; a second head is a second
// sheet. The body starts at row 6.
TEST_F(WorksheetTest, HeadAndGridCellsReadBackWithTheirStylesAndEachHeadStartsASheet) {
    WorkbookOutput book(drive.run);
    const auto where = [&] { return std::pair(book.excel_sheet_number(), book.excel_row()); };
    SheetHead h = head("PAGE : 1", "MARK LIST [GR 8A]");
    h.build = "2026 build";
    book.begin_sheet_head(h);
    EXPECT_EQ(where(), std::pair(1, 6));
    book.write_grid_to_sheet(mark_list());
    EXPECT_EQ(where(), std::pair(1, 10));  // rows 6 to 9 written
    book.begin_sheet_head(head("PAGE : 2", "B"));
    EXPECT_EQ(where(), std::pair(2, 6));
    const QString path = out_folder() + "lys.xlsx";
    ASSERT_TRUE(book.save_to(path, nullptr));
    for (const char* part : {"workbook.xml", "worksheets/sheet1.xml", "sharedStrings.xml", "styles.xml"})
        EXPECT_TRUE(matches_golden(zip_entry(path, QByteArray("xl/") + part),
                                   QStringLiteral("reports/worksheet/list_%1").arg(QFileInfo(part).fileName())));
}

// Column 2 holds one letter a row: it is fitted to no less than 2.
TEST_F(WorksheetTest, AGridWithoutAHeadStartsAtTheTopAndZeroWidthColumnsAreHidden) {
    WorkbookOutput book(drive.run);
    TextGrid g = mark_list();
    g.set_col_width(3, 0);
    for (int r = 1; r < g.rows(); ++r) g.set_text(r, 1, "7");
    book.write_grid_to_sheet(g);
    EXPECT_EQ(std::pair(book.excel_sheet_number(), book.excel_row()), std::pair(1, 5));
    ASSERT_TRUE(book.save_to(out_folder() + "los.xlsx", nullptr));
    EXPECT_EQ(cell("los.xlsx", 0, 0), "Naam");
    // Column 4 hidden.
    EXPECT_TRUE(matches_golden(zip_entry(out_folder() + "los.xlsx", "xl/worksheets/sheet1.xml"),
                               "reports/worksheet/headless_sheet1.xml"));
}

// A save replaces an old workbook and says so; a missing folder, a read-only
// workbook, one open in another program, a folder in the way, a read-only
// folder: the user is told why and what was there stays as it was.
TEST_F(WorksheetTest, ASaveTellsTheUserWhatBecameOfTheWorkbookInEitherLanguage) {
    if (veldo::testing::rerun_unprivileged()) return;
    const QString weg = drive.path("weg"), slot = drive.path("slot");
    QDir().mkpath(slot);
    QFile::setPermissions(slot, QFile::ReadOwner | QFile::ExeOwner);
    const QString read_only = out_folder() + "vas.xlsx", open = out_folder() + "oop.xlsx";
    write_bytes(out_folder() + "Punte 8A.xlsx", "old bytes");
    write_bytes(read_only, "kept");
    QFile::setPermissions(read_only, QFile::ReadOwner | QFile::ReadGroup);
    write_bytes(open, "kept");
    write_bytes(out_folder() + ".~lock.oop.xlsx#", "someone,host");
    QDir().mkpath(out_folder() + "gids.xlsx");  // a folder can't be replaced by a file
    // The folder and stem, in Afrikaans, saved; what the user is told.
    const std::tuple<QString, const char*, bool, bool, QString> cases[] = {
        {out_folder(), "Punte 8A", false, true, "EXPORT OF Punte 8A TO " + out_folder() + "Punte 8A COMPLETE !!"},
        {weg + "/", "punte", false, false, "FOLDER " + weg + " DOES NOT EXIST - punte WAS NOT SAVED !!"},
        {weg + "/", "punte", true, false, "GIDS " + weg + " BESTAAN NIE - punte IS NIE GESTOOR NIE !!"},
        {out_folder(), "vas", false, false, read_only + " IS READ-ONLY - vas WAS NOT SAVED !!"},
        {out_folder(), "oop", true, false, open + " IS OOP IN 'N ANDER PROGRAM - MAAK DIT TOE EN PROBEER WEER !!"},
        {out_folder(), "gids", false, false, "COULD NOT WRITE " + out_folder() + "gids.xlsx - gids WAS NOT SAVED !!"},
        {slot + "/", "punte", false, false, "COULD NOT WRITE " + slot + "/punte.xlsx - punte WAS NOT SAVED !!"},
        // The workbook is still there after a failure: saving it elsewhere works.
        {out_folder(), "punte", true, true, "UITVOER VAN punte NA " + out_folder() + "punte VOLTOOI !!"},
    };
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "NEW"));
    for (const auto& [folder, stem, afrikaans, saved, message] : cases) {
        SCOPED_TRACE(message.toStdString());
        drive.run.language_afrikaans = afrikaans;
        EXPECT_EQ(book.save(folder, stem), saved);
        EXPECT_EQ(said(), QStringList{(saved ? "i " : "! ") + message});
    }
    EXPECT_EQ(cell("Punte 8A.xlsx", 2, 2), "NEW");
    EXPECT_FALSE(QFileInfo::exists(weg));
    EXPECT_EQ(read_bytes(read_only), "kept");
    EXPECT_EQ(read_bytes(open), "kept");
    EXPECT_TRUE(QFileInfo(out_folder() + "gids.xlsx").isDir());
    EXPECT_TRUE(QDir(slot).isEmpty());
    // No scratch file is left beside them.
    EXPECT_EQ(QDir(out_folder()).entryList(QDir::Files, QDir::Name),
              (QStringList{"Punte 8A.xlsx", "oop.xlsx", "punte.xlsx", "vas.xlsx"}));
    QFile::setPermissions(read_only, QFile::ReadOwner | QFile::WriteOwner);
    QFile::setPermissions(slot, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(WorksheetTest, HooksFillOneWorkbookPerJobAndSaveItAtTheEnd) {
    hooks(out_folder(), "werk");
    job.worksheet.sheet_head(head("PAGE : 1", "FIRST"));
    TextGrid g = mark_list();
    job.worksheet.write_grid(g);
    job.worksheet.sheet_head(head("PAGE : 2", "SECOND"));
    job.worksheet.finish();
    EXPECT_EQ(cell("werk.xlsx", 2, 2), "FIRST");
    EXPECT_EQ(cell("werk.xlsx", 6, 0), "ABRAHAMS, JAN");
    EXPECT_TRUE(zip_entry(out_folder() + "werk.xlsx", "xl/workbook.xml").contains("name=\"Sheet2\""));
    EXPECT_EQ(said(), QStringList{"i EXPORT OF werk TO " + out_folder() + "werk COMPLETE !!"});

    // The next job starts a workbook of its own; a finish without a sheet writes nothing.
    job.export_stem = "volgende";
    job.worksheet.sheet_head(head("PAGE : 1", "AGAIN"));
    job.worksheet.finish();
    EXPECT_FALSE(zip_entry(out_folder() + "volgende.xlsx", "xl/workbook.xml").contains("Sheet2"));
    EXPECT_EQ(said(), QStringList{"i EXPORT OF volgende TO " + out_folder() + "volgende COMPLETE !!"});
    job.worksheet.finish();
    EXPECT_EQ(said(), QStringList());
}

TEST_F(WorksheetTest, HooksOfferAnotherPlaceWhenTheFolderIsGoneUntilTheUserGivesUp) {
    hooks(drive.path("weg") + "/", "werk");
    job.worksheet.sheet_head(head("PAGE : 1", "LOST"));
    job.worksheet.finish();  // no file chosen
    const QString gone = "! FOLDER " + drive.path("weg") + " DOES NOT EXIST - werk WAS NOT SAVED !!";
    EXPECT_EQ(said(), (QStringList{gone, "EXCEL EXPORT FILE NAME"}));
    EXPECT_FALSE(QFileInfo::exists(drive.path("weg")));

    job.worksheet.sheet_head(head("PAGE : 1", "KEPT"));
    drive.dialogs.files.enqueue(out_folder() + "elders.xlsx");
    job.worksheet.finish();
    EXPECT_EQ(said(), (QStringList{gone, "i EXPORT OF elders TO " + out_folder() + "elders COMPLETE !!",
                                   "EXCEL EXPORT FILE NAME"}));
    EXPECT_EQ(cell("elders.xlsx", 2, 2), "KEPT");
}

TEST_F(WorksheetTest, HookForAGridStraightToAFileAsksTheName) {
    hooks(QString(), QString());
    drive.dialogs.files.enqueue(out_folder() + "los.xlsx");
    TextGrid g = mark_list();
    job.worksheet.grid_to_new_file(g);
    EXPECT_EQ(std::pair(job.export_folder, job.export_stem), std::pair(out_folder(), QString("los")));
    EXPECT_EQ(cell("los.xlsx", 0, 0), "Naam");
    EXPECT_EQ(said(),
              (QStringList{"i EXPORT OF los TO " + out_folder() + "los COMPLETE !!", "EXCEL EXPORT FILE NAME"}));
    // Cancelled: nothing written, nothing said.
    job.worksheet.grid_to_new_file(g);
    EXPECT_EQ(said(), QStringList{"EXCEL EXPORT FILE NAME"});
}

TEST_F(WorksheetTest, LibreOfficeOpensTheWorkbook) {
    const QString soffice = QStandardPaths::findExecutable("soffice");
    ASSERT_FALSE(soffice.isEmpty()) << "soffice is not installed";
    WorkbookOutput book(drive.run);
    book.begin_sheet_head(head("PAGE : 1", "LIST"));
    book.write_grid_to_sheet(mark_list());
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
