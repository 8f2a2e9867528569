#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "shell/manual_viewer.h"
#include "tests/support/shell_fixture.h"

using namespace veldo;
using namespace veldo::testing;

namespace {

const QByteArray kStamp = "#2026-11-23#\r\n";

// A drive with <root>/VELDO-TALLY and <root>/veldo-leaflets.
struct Shelf : ShellFixture {
    ManualViewer viewer{ctx};
    QString leaflets = run.root_folder + "/veldo-leaflets";

    explicit Shelf(bool afrikaans = false) {
        run.language_afrikaans = afrikaans;
        QDir().mkpath(leaflets);
    }
};

void put_manual(const QString& path) { write_bytes(path, "%PDF-1.4\n"); }

// Runs a test in another current folder and goes back afterwards.
struct CurrentFolder {
    QString before = QDir::currentPath();
    explicit CurrentFolder(const QString& folder) { QDir::setCurrent(folder); }
    ~CurrentFolder() { QDir::setCurrent(before); }
};

}  // namespace

TEST(ManualViewerTable, CaptionsAndFilesInBothLanguages) {
    const struct {
        const char *caption_af, *caption_en, *file_af, *file_en;
    } rows[] = {
        {"SKOOLBESONDERHEDE", "SCHOOL DETAILS", "skool_besonderhede", "school_details"},
        {"GESINSTELSEL (VELDO-KINDREDS)", "FAMILY SYSTEM (VELDO-KINDREDS)", "gesinne", "families"},
        {"ASSESSERINGSTANDAARDE", "ASSESSMENT STANDARDS", "assessering", "assessment"},
        {"SKOOLBYWONING", "ATTENDANCE", "bywoning", "attendance"},
        {"GEDRAGSTELSEL", "MERITS/DEMERITS", "gedrag", "code_conduct"},
        {"BUITEMUURSE INLIGTING", "EXTRA-MURAL INFORMATION", "buitemuurs", "extra_mural"},
        {"VOORRAADSTELSEL (VELDO-SHELF)", "STOCK SYSTEM (VELDO-SHELF)", "voorraad", "stock"},
        {"PERSONEELSTELSEL (VELDO-CREWS)", "STAFF SYSTEM (VELDO-CREWS)", "personeel", "staff"},
        {"MEDIASTELSEL (VELDO-SCROL)", "MEDIA SYSTEM (VELDO-SCROL)", "media_afr", "media_eng"},
        {"KYKSTELSEL (VELDO-VIEWER)", "BROWSE SYSTEM (VELDO-VIEWER)", "browse_afr", "browse_eng"},
        {"RUGSTEUNSTELSEL (VELDO-VAULTS)", "BACKUP SYSTEM (VELDO-VAULTS)", "backup_afr", "backup_eng"},
        {"PUNTE/PUNTEBOEKE (VELDO-TALLY)", "MARKS/MARK BOOKS (VELDO-TALLY)", "m_marks_afr", "m_marks_eng"},
        {"LEERDERS - ADMINISTRATIEF", "LEARNERS - ADMINISTRATIVE", "leerder_adm", "learner_adm"},
        {"LEERDERS - AKADEMIES", "LEARNERS - ACADEMIC", "leerder_akd", "learner_acd"},
        {"ANA REGISTRASIES EN PUNTE", "ANA REGISTRATIONS AND MARKS", "ana inskrywings", "ana registrations"},
    };
    ASSERT_EQ(ManualViewer::kOptionCount, 15);
    for (int i = 1; i <= 15; ++i) {
        EXPECT_EQ(ManualViewer::caption_for(i, true), rows[i - 1].caption_af) << i;
        EXPECT_EQ(ManualViewer::caption_for(i, false), rows[i - 1].caption_en) << i;
        EXPECT_EQ(ManualViewer::file_for(i, true), rows[i - 1].file_af) << i;
        EXPECT_EQ(ManualViewer::file_for(i, false), rows[i - 1].file_en) << i;
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

// Without a name (or a blank one) the list shows in the user's language and
// the form stays; a marked option is cleared.
TEST(ManualViewer, LoadWithoutNameShowsTheListAndStays) {
    for (const bool afrikaans : {false, true}) {
        for (const char* name : {"", "   "}) {
            SCOPED_TRACE(std::string(afrikaans ? "af" : "en") + " '" + name + "'");
            Shelf s(afrikaans);
            s.run.manual_file_name = name;
            s.viewer.um_opsie_click(4);
            EXPECT_TRUE(s.viewer.load());
            for (int i = 1; i <= 15; ++i) {
                EXPECT_EQ(s.viewer.caption(i), ManualViewer::caption_for(i, afrikaans)) << i;
                EXPECT_FALSE(s.viewer.option_on(i)) << i;
            }
            EXPECT_TRUE(s.screens.documents.isEmpty());
            EXPECT_TRUE(s.screens.unloaded.isEmpty());
        }
    }
}

// With a name the manual opens (when it is there), the date is stamped beside
// it whether or not, the name is used up and the form goes without captions.
TEST(ManualViewer, NamedManualOpensAndTheFormGoes) {
    const struct {
        const char* name;
        const char* file;  // below the drive
        bool present;
        const char* why;
    } rows[] = {
        {"m_marks_afr.pdf", "Apps/veldo-leaflets/m_marks_afr.pdf", false, "a missing manual only stamps"},
        {"m_marks_eng.pdf", "Apps/veldo-leaflets/m_marks_eng.pdf", true, "the marks menu in English"},
        {"m_punteboek.pdf", "Apps/veldo-leaflets/m_punteboek.pdf", true, "the mark book menu in Afrikaans"},
        {"  m_markbook.pdf ", "Apps/veldo-leaflets/m_markbook.pdf", true, "the name is trimmed"},
        {"news_2026.pdf", "Apps/VELDO-TALLY/news_2026.pdf", true, "news sheets lie beside the program"},
        {"nuus_2026.pdf", "Apps/VELDO-TALLY/nuus_2026.pdf", true, "so do the Afrikaans ones"},
        {nullptr, "elsewhere/nuus_handleiding.pdf", true, "a full path ignores the folder rules"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.why);
        Shelf s;
        const QString file = s.path(r.file);
        if (r.present) put_manual(file);
        s.run.manual_file_name = r.name ? QString(r.name) : file;
        EXPECT_FALSE(s.viewer.load());
        EXPECT_EQ(s.screens.documents, r.present ? QStringList{file} : QStringList{});
        EXPECT_EQ(s.run.manual_file_name, "");
        EXPECT_EQ(read_bytes(file.chopped(4) + ".dte"), kStamp);
        EXPECT_TRUE(s.dialogs.messages.isEmpty());
        EXPECT_EQ(s.viewer.caption(1), "");
    }
}

TEST(ManualViewer, PathRules) {
    const struct {
        const char *name, *path, *why;
    } rows[] = {
        {"/elders/x.pdf", "/elders/x.pdf", "a full path stands as it is"},
        {"D:\\handleidings\\x.pdf", "D:\\handleidings\\x.pdf", "so does another machine's drive"},
        {"net/skool/kestralin/x.pdf", "net/skool/kestralin/x.pdf", "a name whose upper-case form holds the root"},
        {"nuus.pdf", "/SKOOL/KESTRALIN/VELDO-TALLY/nuus.pdf", "news sheets lie beside the program"},
        {"news_jan.pdf", "/SKOOL/KESTRALIN/VELDO-TALLY/news_jan.pdf", "in both languages"},
        {"m_marks_afr.pdf", "/SKOOL/KESTRALIN/veldo-leaflets/m_marks_afr.pdf", "everything else is a leaflet"},
        {"ana inskrywings.pdf", "/SKOOL/KESTRALIN/veldo-leaflets/ana inskrywings.pdf", "a leaflet with a blank"},
    };
    Shelf s;
    s.run.root_folder = "/SKOOL/KESTRALIN";
    s.run.program_folder = "/SKOOL/KESTRALIN/VELDO-TALLY";
    for (const auto& r : rows) EXPECT_EQ(s.viewer.manual_path_for(r.name), r.path) << r.why;
    // The test is on the upper-case name: a lower-case root never matches.
    s.run.root_folder = "/skool";
    EXPECT_EQ(s.viewer.manual_path_for("a/skool/x.pdf"), "/skool/veldo-leaflets/a/skool/x.pdf");
}

TEST(ManualViewer, StampThatCannotBeWrittenIsReported) {
    Shelf s;
    QDir(s.leaflets).removeRecursively();
    s.run.manual_file_name = "m_marks_afr.pdf";
    EXPECT_FALSE(s.viewer.load());
    EXPECT_TRUE(s.screens.documents.isEmpty());
    ASSERT_EQ(s.dialogs.messages.size(), 1);
    EXPECT_EQ(s.dialogs.messages[0].icon, MsgIcon::Critical);
    EXPECT_FALSE(QFile::exists(s.leaflets));
}

// The stamp holds the date of the last opening only, beside a manual of
// either case; the manual itself is untouched.
TEST(ManualViewer, StampIsRewrittenBesideTheManual) {
    Shelf s;
    const QString manual = s.leaflets + "/gedrag.pdf", upper = s.leaflets + "/STOCK.PDF";
    put_manual(manual);
    put_manual(upper);
    write_bytes(s.leaflets + "/gedrag.dte", "#2025-01-02#\r\nold second line\r\n");
    s.run.today = QDate(2027, 2, 5);
    s.viewer.open_manual(manual);
    EXPECT_EQ(read_bytes(s.leaflets + "/gedrag.dte"), "#2027-02-05#\r\n");
    s.run.today = QDate(2026, 11, 23);
    s.viewer.open_manual(upper);
    EXPECT_EQ(read_bytes(s.leaflets + "/STOCK.dte"), kStamp);
    EXPECT_EQ(s.screens.documents, (QStringList{manual, upper}));
    EXPECT_EQ(read_bytes(manual), "%PDF-1.4\n");
    EXPECT_EQ(read_bytes(upper), "%PDF-1.4\n");
}

// Manuals come as asked, in upper case or in title case; the viewer gets the
// path as it was asked for. A folder of the name is no manual.
TEST(ManualViewer, ThreeSpellingsAreFound) {
    const struct {
        const char *on_disk, *asked;
        bool opens;
    } rows[] = {
        {"M_MARKS_AFR.PDF", "m_marks_afr.pdf", true},
        {"Leerder_Adm.pdf", "leerder_adm.pdf", true},
        {"lEERDER_adm.pdf", "leerder_adm.pdf", false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.on_disk);
        Shelf s;
        CurrentFolder here(s.leaflets);
        put_manual(s.leaflets + "/" + r.on_disk);
        s.viewer.open_manual(r.asked);
        EXPECT_EQ(s.screens.documents, r.opens ? QStringList{r.asked} : QStringList{});
        EXPECT_EQ(read_bytes(s.leaflets + "/" + QString(r.asked).chopped(4) + ".dte"), kStamp);
    }
    Shelf s;
    QDir().mkpath(s.leaflets + "/staff.pdf");
    s.viewer.open_manual(s.leaflets + "/staff.pdf");
    EXPECT_TRUE(s.screens.documents.isEmpty());
}

TEST(ManualViewer, OptionsAreExclusiveAndExitUnloads) {
    Shelf s;
    s.viewer.load();
    s.viewer.um_opsie_click(3);
    s.viewer.um_opsie_click(9);
    EXPECT_FALSE(s.viewer.option_on(3));
    EXPECT_TRUE(s.viewer.option_on(9));
    s.viewer.um_opsie_click(0);
    s.viewer.um_opsie_click(16);
    EXPECT_TRUE(s.viewer.option_on(9));
    s.viewer.pdf_exit();
    EXPECT_EQ(s.screens.unloaded, QStringList{screen::acrobat_interface});
}

// OK opens the marked manual in the user's language from the leaflets and
// the form stays; with nothing marked nothing opens and nothing is stamped.
TEST(ManualViewer, OkOpensTheMarkedManual) {
    const struct {
        bool afrikaans;
        int option;
        const char* file;
        bool present;
    } rows[] = {
        {false, 12, "m_marks_eng", true},
        {true, 15, "ana inskrywings", true},
        {false, 5, "code_conduct", false},
        {false, 0, nullptr, false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.option);
        Shelf s(r.afrikaans);
        s.viewer.load();
        const QString manual = r.file ? s.leaflets + "/" + r.file + ".pdf" : QString();
        if (r.present) put_manual(manual);
        s.viewer.um_opsie_click(r.option);
        s.viewer.pdf_ok();
        EXPECT_EQ(s.screens.documents, r.present ? QStringList{manual} : QStringList{});
        if (r.file)
            EXPECT_EQ(read_bytes(s.leaflets + "/" + r.file + ".dte"), kStamp);
        else
            EXPECT_EQ(QDir(s.leaflets).entryList(QDir::Files), QStringList{});
        EXPECT_FALSE(s.viewer.option_on(r.option));
        EXPECT_TRUE(s.dialogs.messages.isEmpty());
        EXPECT_TRUE(s.screens.unloaded.isEmpty());
    }
}

// Browsing opens a chosen PDF that exists, without a stamp; a missing file
// or a cancel opens nothing.
TEST(ManualViewer, BrowseOpensAChosenPdf) {
    Shelf s;
    const QString chosen = s.path("own/verslag.pdf");
    put_manual(chosen);
    s.dialogs.files << chosen << s.path("own/weg.pdf");
    for (int i = 0; i < 3; ++i) s.viewer.pdf_soek();
    EXPECT_EQ(s.dialogs.file_filter, "*.pdf");
    EXPECT_EQ(s.dialogs.file_start, s.leaflets + "/");
    EXPECT_EQ(s.screens.documents, QStringList{chosen});
    EXPECT_FALSE(QFile::exists(s.path("own/verslag.dte")));
    EXPECT_TRUE(s.dialogs.messages.isEmpty());
}
