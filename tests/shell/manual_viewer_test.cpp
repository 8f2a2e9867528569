// The manual viewer: the table of manuals, the path a name leads to, and the
// date stamp each opening leaves beside the manual.
#include <gtest/gtest.h>

#include <QDir>

#include "shell/manual_viewer.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

using namespace veldo;
using namespace veldo::testing;

namespace {

// A drive with <root>/VELDO-TALLY and <root>/veldo-leaflets.
struct Shelf : ShellFixture {
    ManualViewer viewer{ctx};
    QString leaflets = run.root_folder + "/veldo-leaflets";

    explicit Shelf(bool afrikaans = false) {
        run.language_afrikaans = afrikaans;
        QDir().mkpath(leaflets);
    }
};

}  // namespace

TEST(ManualViewerTable, CaptionsAndFilesInBothLanguages) {
    QString table;
    for (int i = 0; i <= ManualViewer::kOptionCount + 1; ++i) {
        table += QStringList{QString::number(i), ManualViewer::caption_for(i, true),
                             ManualViewer::caption_for(i, false), ManualViewer::file_for(i, true),
                             ManualViewer::file_for(i, false)}
                     .join(" | ");
        table += '\n';
    }
    EXPECT_TRUE(matches_golden(table, "shell/manual_table.txt"));
}

TEST(ManualViewerStamp, PathTurnsPdfIntoDte) {
    EXPECT_EQ(ManualViewer::stamp_path_for("/r/veldo-leaflets/m_marks_afr.pdf"), "/r/veldo-leaflets/m_marks_afr.dte");
    EXPECT_EQ(ManualViewer::stamp_path_for("/r/MANUAL.PDF"), "/r/MANUAL.dte");
    // No PDF in the name: the stamp would overwrite the manual or hit the folder.
    EXPECT_EQ(ManualViewer::stamp_path_for("/r/veldo-leaflets/"), "");
    EXPECT_EQ(ManualViewer::stamp_path_for("/r/readme.txt"), "");
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

// Every way to a manual, with what lies on the drive beforehand: whether the
// form stays, the name and options after, what opened and the files left
// (a manual untouched, its stamp holding the day's date only). Where a name
// leads is PathRules' to pin.
TEST(ManualViewer, OpensTheManualAskedForAndStampsTheDay) {
    enum Action { Load, Ok, Open, Browse, Exit };
    const struct {
        const char* why;
        Action action;
        bool afrikaans;
        QString asked;        // Load: the menu's name; Open: a path in the leaflets folder
        int option;           // Ok: the option marked, 0 for none
        QStringList on_disk;  // below the drive: a manual, an old stamp (.dte), a folder (/) or none (-folder)
    } rows[] = {
        {"without a name the English list shows and a marked option clears", Load, false, "", 0, {}},
        {"a blank name is none, the list in Afrikaans", Load, true, "   ", 0, {}},
        {"a missing manual only stamps", Load, false, "m_marks_afr.pdf", 0, {}},
        {"a stamp that cannot be written is reported", Load, false, "m_marks_afr.pdf", 0, {"-Apps/veldo-leaflets"}},
        {"the marks menu in English", Load, false, "m_marks_eng.pdf", 0, {"Apps/veldo-leaflets/m_marks_eng.pdf"}},
        {"the name is trimmed", Load, false, "  m_markbook.pdf ", 0, {"Apps/veldo-leaflets/m_markbook.pdf"}},
        {"news sheets lie beside the program", Load, true, "nuus_2026.pdf", 0, {"Apps/VELDO-TALLY/nuus_2026.pdf"}},
        {"OK opens the marked manual in English", Ok, false, "", 12, {"Apps/veldo-leaflets/m_marks_eng.pdf"}},
        {"and in Afrikaans", Ok, true, "", 15, {"Apps/veldo-leaflets/ana inskrywings.pdf"}},
        {"a marked manual that is missing only stamps", Ok, false, "", 5, {}},
        {"nothing marked opens and stamps nothing", Ok, false, "", 0, {}},
        {"an old stamp is rewritten whole", Open, false, "gedrag.pdf",
         0, {"Apps/veldo-leaflets/gedrag.pdf", "Apps/veldo-leaflets/gedrag.dte"}},
        {"found in upper case, opened as asked", Open, false, "m_marks_afr.pdf", 0,
         {"Apps/veldo-leaflets/M_MARKS_AFR.PDF"}},
        {"found in title case", Open, false, "leerder_adm.pdf", 0, {"Apps/veldo-leaflets/Leerder_Adm.pdf"}},
        {"no other spelling is looked for", Open, false, "leerder_adm.pdf", 0, {"Apps/veldo-leaflets/lEERDER_adm.pdf"}},
        {"a folder of the name is no manual", Open, false, "staff.pdf", 0, {"Apps/veldo-leaflets/staff.pdf/"}},
        {"browsing opens a chosen PDF without a stamp, a missing one or a cancel nothing", Browse, false, "", 0,
         {"own/verslag.pdf"}},
        {"options are exclusive, those past the list are passed over; EXIT unloads", Exit, false, "", 0, {}},
    };
    QString outcome;
    for (const auto& r : rows) {
        SCOPED_TRACE(r.why);
        Shelf s(r.afrikaans);
        s.run.today = QDate(2027, 2, 5);  // not the clock's day
        for (const QString& f : r.on_disk) {
            if (f.startsWith('-'))
                QDir(s.path(f.mid(1))).removeRecursively();
            else if (f.endsWith('/'))
                QDir().mkpath(s.path(f));
            else
                write_bytes(s.path(f), f.endsWith(".dte") ? "#2025-01-02#\r\nold second line\r\n" : "%PDF-1.4\n");
        }
        QString stays = "-";
        if (r.action == Load) {
            s.run.manual_file_name = r.asked;
            s.viewer.um_opsie_click(4);
            stays = s.viewer.load() ? "stays" : "goes";
        } else if (r.action == Ok) {
            s.viewer.load();
            s.viewer.um_opsie_click(r.option);
            s.viewer.pdf_ok();
        } else if (r.action == Open) {
            QDir::setCurrent(s.leaflets);  // the fixture goes back
            s.viewer.open_manual(r.asked);
        } else if (r.action == Exit) {
            s.viewer.load();
            for (const int option : {3, 9, 0, 16}) s.viewer.um_opsie_click(option);
            s.viewer.pdf_exit();
        } else {
            s.dialogs.files << s.path("own/verslag.pdf") << s.path("own/weg.pdf");
            for (int i = 0; i < 3; ++i) s.viewer.pdf_soek();
            EXPECT_EQ(s.dialogs.file_filter, "*.pdf");
            EXPECT_EQ(s.dialogs.file_start, s.leaflets + "/");
        }
        QStringList captions, marked;
        for (int i = 0; i <= ManualViewer::kOptionCount + 1; ++i) {
            captions << s.viewer.caption(i);
            if (s.viewer.option_on(i)) marked << QString::number(i);
        }
        outcome += QString("== %1\nform %2, name '%3', marked '%4', captions %5\n")
                       .arg(r.why, stays, s.run.manual_file_name, marked.join(' '), captions.join('|')) +
                   transcript(s, s.screens, {"Apps", "own"});
    }
    EXPECT_TRUE(matches_golden(outcome, "shell/manual_openings.txt"));
}
