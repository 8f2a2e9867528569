#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "shell/manual_viewer.h"
#include "tests/support/fake_screens.h"
#include "tests/support/temp_drive.h"

using namespace veldo;
using namespace veldo::testing;

namespace {

// Remembers the filter of the file picker, which the scripted service drops.
struct FilterDialogs : ScriptedDialogs {
    QString open_filter, open_start;
    QString choose_open_file(const QString& title, const QString& start, const QString& filter) override {
        open_filter = filter;
        open_start = start;
        return ScriptedDialogs::choose_open_file(title, start, filter);
    }
};

struct ManualViewerTest : ::testing::Test {
    TempDrive drive;
    FilterDialogs dialogs;
    FakeScreens screens;
    ShellContext ctx{drive.run, *drive.store, dialogs, screens, Clock{}};
    ManualViewer viewer{ctx};
    QString root, program, leaflets;

    ManualViewerTest() {
        root = drive.path("KESTRALIN");
        program = root + "/VELDO-TALLY";
        leaflets = root + "/veldo-leaflets";
        drive.run.root_folder = root;
        drive.run.program_folder = program;
        QDir().mkpath(program);
        QDir().mkpath(leaflets);
    }
    void put_manual(const QString& path) { write_bytes(path, "%PDF-1.4\n"); }
};

// Runs a test in another current folder and goes back afterwards.
struct CurrentFolder {
    QString before = QDir::currentPath();
    explicit CurrentFolder(const QString& folder) { QDir::setCurrent(folder); }
    ~CurrentFolder() { QDir::setCurrent(before); }
};

}  // namespace

// The table of manuals.

TEST(ManualViewerTable, CaptionsAndFilesInBothLanguages) {
    const QStringList af_captions = {
        "SKOOLBESONDERHEDE", "GESINSTELSEL (VELDO-KINDREDS)", "ASSESSERINGSTANDAARDE",
        "SKOOLBYWONING", "GEDRAGSTELSEL", "BUITEMUURSE INLIGTING",
        "VOORRAADSTELSEL (VELDO-SHELF)", "PERSONEELSTELSEL (VELDO-CREWS)",
        "MEDIASTELSEL (VELDO-SCROL)", "KYKSTELSEL (VELDO-VIEWER)",
        "RUGSTEUNSTELSEL (VELDO-VAULTS)", "PUNTE/PUNTEBOEKE (VELDO-TALLY)",
        "LEERDERS - ADMINISTRATIEF", "LEERDERS - AKADEMIES", "ANA REGISTRASIES EN PUNTE"};
    const QStringList en_captions = {
        "SCHOOL DETAILS", "FAMILY SYSTEM (VELDO-KINDREDS)", "ASSESSMENT STANDARDS", "ATTENDANCE",
        "MERITS/DEMERITS", "EXTRA-MURAL INFORMATION", "STOCK SYSTEM (VELDO-SHELF)",
        "STAFF SYSTEM (VELDO-CREWS)", "MEDIA SYSTEM (VELDO-SCROL)", "BROWSE SYSTEM (VELDO-VIEWER)",
        "BACKUP SYSTEM (VELDO-VAULTS)", "MARKS/MARK BOOKS (VELDO-TALLY)",
        "LEARNERS - ADMINISTRATIVE", "LEARNERS - ACADEMIC", "ANA REGISTRATIONS AND MARKS"};
    const QStringList af_files = {"skool_besonderhede", "gesinne", "assessering", "bywoning",
                                  "gedrag", "buitemuurs", "voorraad", "personeel", "media_afr",
                                  "browse_afr", "backup_afr", "m_marks_afr", "leerder_adm",
                                  "leerder_akd", "ana inskrywings"};
    const QStringList en_files = {"school_details", "families", "assessment", "attendance",
                                  "code_conduct", "extra_mural", "stock", "staff", "media_eng",
                                  "browse_eng", "backup_eng", "m_marks_eng", "learner_adm",
                                  "learner_acd", "ana registrations"};
    ASSERT_EQ(ManualViewer::kOptionCount, 15);
    for (int i = 1; i <= 15; ++i) {
        EXPECT_EQ(ManualViewer::caption_for(i, true), af_captions[i - 1]) << i;
        EXPECT_EQ(ManualViewer::caption_for(i, false), en_captions[i - 1]) << i;
        EXPECT_EQ(ManualViewer::file_for(i, true), af_files[i - 1]) << i;
        EXPECT_EQ(ManualViewer::file_for(i, false), en_files[i - 1]) << i;
    }
    EXPECT_EQ(ManualViewer::caption_for(0, false), "");
    EXPECT_EQ(ManualViewer::file_for(16, true), "");
}

TEST(ManualViewerStamp, PathTurnsPdfIntoDte) {
    EXPECT_EQ(ManualViewer::stamp_path_for("/r/veldo-leaflets/m_marks_afr.pdf"), "/r/veldo-leaflets/m_marks_afr.dte");
    EXPECT_EQ(ManualViewer::stamp_path_for("/r/MANUAL.PDF"), "/r/MANUAL.dte");
    // No PDF in the name: the stamp would overwrite the manual or hit the folder.
    EXPECT_EQ(ManualViewer::stamp_path_for("/r/veldo-leaflets/"), "");
    EXPECT_EQ(ManualViewer::stamp_path_for("/r/readme.txt"), "");
}

// Load without a name: the list.

TEST_F(ManualViewerTest, LoadWithoutNameShowsEnglishCaptionsAndStays) {
    EXPECT_TRUE(viewer.load());
    EXPECT_EQ(viewer.caption(1), "SCHOOL DETAILS");
    EXPECT_EQ(viewer.caption(12), "MARKS/MARK BOOKS (VELDO-TALLY)");
    EXPECT_EQ(viewer.caption(15), "ANA REGISTRATIONS AND MARKS");
    for (int i = 1; i <= 15; ++i) EXPECT_FALSE(viewer.option_on(i));
    EXPECT_TRUE(screens.documents.isEmpty());
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(ManualViewerTest, LoadWithoutNameShowsAfrikaansCaptions) {
    drive.run.language_afrikaans = true;
    EXPECT_TRUE(viewer.load());
    EXPECT_EQ(viewer.caption(1), "SKOOLBESONDERHEDE");
    EXPECT_EQ(viewer.caption(12), "PUNTE/PUNTEBOEKE (VELDO-TALLY)");
    EXPECT_EQ(viewer.caption(15), "ANA REGISTRASIES EN PUNTE");
}

TEST_F(ManualViewerTest, BlankNameCountsAsNoName) {
    drive.run.manual_file_name = "   ";
    EXPECT_TRUE(viewer.load());
    EXPECT_EQ(viewer.caption(2), "FAMILY SYSTEM (VELDO-KINDREDS)");
    EXPECT_TRUE(screens.documents.isEmpty());
}

TEST_F(ManualViewerTest, LoadClearsMarkedOption) {
    viewer.um_opsie_click(4);
    viewer.load();
    EXPECT_FALSE(viewer.option_on(4));
}

// Load with a name: open and go.

TEST_F(ManualViewerTest, NamedManualOpensFromLeafletsAndFormGoes) {
    drive.run.manual_file_name = "m_marks_eng.pdf";
    put_manual(leaflets + "/m_marks_eng.pdf");
    EXPECT_FALSE(viewer.load());
    EXPECT_EQ(screens.documents, QStringList{leaflets + "/m_marks_eng.pdf"});
    EXPECT_EQ(drive.run.manual_file_name, "");
    EXPECT_EQ(read_bytes(leaflets + "/m_marks_eng.dte"), "#2026-11-23#\r\n");
    // No captions for a form that never shows.
    EXPECT_EQ(viewer.caption(1), "");
}

TEST_F(ManualViewerTest, NamedManualsOfBothMenusInBothLanguages) {
    for (const char* name : {"m_marks_afr.pdf", "m_marks_eng.pdf", "m_punteboek.pdf", "m_markbook.pdf"}) {
        put_manual(leaflets + "/" + name);
        drive.run.manual_file_name = name;
        EXPECT_FALSE(viewer.load());
    }
    EXPECT_EQ(screens.documents,
              (QStringList{leaflets + "/m_marks_afr.pdf", leaflets + "/m_marks_eng.pdf",
                           leaflets + "/m_punteboek.pdf", leaflets + "/m_markbook.pdf"}));
    EXPECT_EQ(read_bytes(leaflets + "/m_punteboek.dte"), "#2026-11-23#\r\n");
    EXPECT_EQ(read_bytes(leaflets + "/m_markbook.dte"), "#2026-11-23#\r\n");
}

TEST_F(ManualViewerTest, NameIsTrimmedBeforeUse) {
    drive.run.manual_file_name = "  m_markbook.pdf ";
    put_manual(leaflets + "/m_markbook.pdf");
    viewer.load();
    EXPECT_EQ(screens.documents, QStringList{leaflets + "/m_markbook.pdf"});
}

TEST_F(ManualViewerTest, FullPathIgnoresTheFolderRules) {
    const QString elsewhere = drive.path("elsewhere/nuus_handleiding.pdf");
    put_manual(elsewhere);
    drive.run.manual_file_name = elsewhere;
    EXPECT_FALSE(viewer.load());
    EXPECT_EQ(screens.documents, QStringList{elsewhere});
    EXPECT_EQ(read_bytes(drive.path("elsewhere/nuus_handleiding.dte")), "#2026-11-23#\r\n");
}

TEST_F(ManualViewerTest, NewsSheetsComeFromTheProgramFolder) {
    put_manual(program + "/news_2026.pdf");
    put_manual(program + "/nuus_2026.pdf");
    drive.run.manual_file_name = "news_2026.pdf";
    viewer.load();
    drive.run.manual_file_name = "nuus_2026.pdf";
    viewer.load();
    EXPECT_EQ(screens.documents, (QStringList{program + "/news_2026.pdf", program + "/nuus_2026.pdf"}));
    EXPECT_EQ(read_bytes(program + "/nuus_2026.dte"), "#2026-11-23#\r\n");
}

TEST_F(ManualViewerTest, PathRules) {
    drive.run.root_folder = "/SKOOL/KESTRALIN";
    drive.run.program_folder = "/SKOOL/KESTRALIN/VELDO-TALLY";
    // A full path, or a drive of another machine, stands as it is.
    EXPECT_EQ(viewer.manual_path_for("/elders/x.pdf"), "/elders/x.pdf");
    EXPECT_EQ(viewer.manual_path_for("D:\\handleidings\\x.pdf"), "D:\\handleidings\\x.pdf");
    // A name whose upper-case form holds the root folder stands as it is.
    EXPECT_EQ(viewer.manual_path_for("net/skool/kestralin/x.pdf"), "net/skool/kestralin/x.pdf");
    // News sheets lie beside the program.
    EXPECT_EQ(viewer.manual_path_for("nuus.pdf"), "/SKOOL/KESTRALIN/VELDO-TALLY/nuus.pdf");
    EXPECT_EQ(viewer.manual_path_for("news_jan.pdf"), "/SKOOL/KESTRALIN/VELDO-TALLY/news_jan.pdf");
    // Everything else is a leaflet.
    EXPECT_EQ(viewer.manual_path_for("m_marks_afr.pdf"), "/SKOOL/KESTRALIN/veldo-leaflets/m_marks_afr.pdf");
    EXPECT_EQ(viewer.manual_path_for("ana inskrywings.pdf"),
              "/SKOOL/KESTRALIN/veldo-leaflets/ana inskrywings.pdf");
}

TEST_F(ManualViewerTest, RootFolderIsMatchedAsItStands) {
    // The test is on the upper-case name: a lower-case root never matches.
    drive.run.root_folder = "/skool";
    EXPECT_EQ(viewer.manual_path_for("a/skool/x.pdf"), "/skool/veldo-leaflets/a/skool/x.pdf");
}

TEST_F(ManualViewerTest, MissingManualOpensNothingButStampsTheDate) {
    drive.run.manual_file_name = "m_marks_afr.pdf";
    EXPECT_FALSE(viewer.load());
    EXPECT_TRUE(screens.documents.isEmpty());
    EXPECT_TRUE(dialogs.messages.isEmpty());
    EXPECT_EQ(read_bytes(leaflets + "/m_marks_afr.dte"), "#2026-11-23#\r\n");
    EXPECT_EQ(drive.run.manual_file_name, "");
}

TEST_F(ManualViewerTest, StampThatCannotBeWrittenIsReported) {
    QDir(leaflets).removeRecursively();
    drive.run.manual_file_name = "m_marks_afr.pdf";
    EXPECT_FALSE(viewer.load());
    EXPECT_TRUE(screens.documents.isEmpty());
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_EQ(dialogs.messages[0].icon, MsgIcon::Critical);
    EXPECT_FALSE(QFile::exists(leaflets));
}

// The stamp.

TEST_F(ManualViewerTest, StampIsRewrittenWithTheDateOfTheLastOpening) {
    const QString manual = leaflets + "/gedrag.pdf";
    put_manual(manual);
    write_bytes(leaflets + "/gedrag.dte", "#2025-01-02#\r\nold second line\r\n");
    drive.run.today = QDate(2027, 2, 5);
    viewer.open_manual(manual);
    EXPECT_EQ(read_bytes(leaflets + "/gedrag.dte"), "#2027-02-05#\r\n");
    // The manual itself is untouched.
    EXPECT_EQ(read_bytes(manual), "%PDF-1.4\n");
}

TEST_F(ManualViewerTest, UpperCaseExtensionGetsStampBeside) {
    const QString manual = leaflets + "/STOCK.PDF";
    put_manual(manual);
    viewer.open_manual(manual);
    EXPECT_EQ(screens.documents, QStringList{manual});
    EXPECT_EQ(read_bytes(leaflets + "/STOCK.dte"), "#2026-11-23#\r\n");
    EXPECT_EQ(read_bytes(manual), "%PDF-1.4\n");
}

// The three spellings.

TEST_F(ManualViewerTest, UpperCaseSpellingAloneIsEnoughAndPathIsOpenedAsGiven) {
    CurrentFolder here(leaflets);
    put_manual(leaflets + "/M_MARKS_AFR.PDF");
    viewer.open_manual("m_marks_afr.pdf");
    EXPECT_EQ(screens.documents, QStringList{"m_marks_afr.pdf"});
}

TEST_F(ManualViewerTest, TitleCaseSpellingAloneIsEnough) {
    CurrentFolder here(leaflets);
    put_manual(leaflets + "/Leerder_Adm.pdf");
    viewer.open_manual("leerder_adm.pdf");
    EXPECT_EQ(screens.documents, QStringList{"leerder_adm.pdf"});
}

TEST_F(ManualViewerTest, OtherSpellingsAreNotFound) {
    CurrentFolder here(leaflets);
    put_manual(leaflets + "/lEERDER_adm.pdf");
    viewer.open_manual("leerder_adm.pdf");
    EXPECT_TRUE(screens.documents.isEmpty());
    EXPECT_EQ(read_bytes(leaflets + "/leerder_adm.dte"), "#2026-11-23#\r\n");
}

TEST_F(ManualViewerTest, FolderOfTheNameIsNoManual) {
    QDir().mkpath(leaflets + "/staff.pdf");
    viewer.open_manual(leaflets + "/staff.pdf");
    EXPECT_TRUE(screens.documents.isEmpty());
}

// The list.

TEST_F(ManualViewerTest, OptionsAreExclusive) {
    viewer.load();
    viewer.um_opsie_click(3);
    viewer.um_opsie_click(9);
    EXPECT_FALSE(viewer.option_on(3));
    EXPECT_TRUE(viewer.option_on(9));
    viewer.um_opsie_click(0);
    viewer.um_opsie_click(16);
    EXPECT_TRUE(viewer.option_on(9));
}

TEST_F(ManualViewerTest, OkOpensTheMarkedManualInEnglishAndStays) {
    viewer.load();
    put_manual(leaflets + "/m_marks_eng.pdf");
    viewer.um_opsie_click(12);
    viewer.pdf_ok();
    EXPECT_EQ(screens.documents, QStringList{leaflets + "/m_marks_eng.pdf"});
    EXPECT_EQ(read_bytes(leaflets + "/m_marks_eng.dte"), "#2026-11-23#\r\n");
    EXPECT_FALSE(viewer.option_on(12));
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(ManualViewerTest, OkOpensTheMarkedManualInAfrikaans) {
    drive.run.language_afrikaans = true;
    viewer.load();
    put_manual(leaflets + "/ana inskrywings.pdf");
    viewer.um_opsie_click(15);
    viewer.pdf_ok();
    EXPECT_EQ(screens.documents, QStringList{leaflets + "/ana inskrywings.pdf"});
    EXPECT_EQ(read_bytes(leaflets + "/ana inskrywings.dte"), "#2026-11-23#\r\n");
}

TEST_F(ManualViewerTest, OkOnMissingManualOnlyStamps) {
    viewer.load();
    viewer.um_opsie_click(5);
    viewer.pdf_ok();
    EXPECT_TRUE(screens.documents.isEmpty());
    EXPECT_EQ(read_bytes(leaflets + "/code_conduct.dte"), "#2026-11-23#\r\n");
}

TEST_F(ManualViewerTest, OkWithNothingMarkedOpensNothing) {
    viewer.load();
    viewer.pdf_ok();
    EXPECT_TRUE(screens.documents.isEmpty());
    EXPECT_TRUE(dialogs.messages.isEmpty());
    EXPECT_EQ(QDir(leaflets).entryList(QDir::Files), QStringList{});
}

TEST_F(ManualViewerTest, BrowseOpensChosenPdfWithoutStamp) {
    const QString chosen = drive.path("own/verslag.pdf");
    put_manual(chosen);
    dialogs.files.enqueue(chosen);
    viewer.pdf_soek();
    EXPECT_EQ(dialogs.open_filter, "*.pdf");
    EXPECT_EQ(screens.documents, QStringList{chosen});
    EXPECT_FALSE(QFile::exists(drive.path("own/verslag.dte")));
}

TEST_F(ManualViewerTest, BrowseToMissingFileOrCancelOpensNothing) {
    dialogs.files.enqueue(drive.path("own/weg.pdf"));
    viewer.pdf_soek();
    viewer.pdf_soek();  // cancelled
    EXPECT_TRUE(screens.documents.isEmpty());
    EXPECT_TRUE(dialogs.messages.isEmpty());
}

TEST_F(ManualViewerTest, ExitUnloadsTheForm) {
    viewer.pdf_exit();
    EXPECT_EQ(screens.unloaded, QStringList{screen::acrobat_interface});
}
