// The three menus: entries by mouse and key, passwords, the folder test.
#include <gtest/gtest.h>

#include "shell/menus.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

using testing::ShellFixture;
using testing::write_bytes;

struct Menus : ::testing::Test, ShellFixture {
    MenuScreen top{ctx, passwords, MenuKind::Top};
    MenuScreen book{ctx, passwords, MenuKind::Marks2};
    MenuScreen input{ctx, passwords, MenuKind::Marks1};
    QString transcript() const { return testing::transcript(*this, screens); }
};

// Every caption and tooltip of the three menus, in both languages.
TEST_F(Menus, CaptionsAndTooltipsInBothLanguages) {
    QString texts;
    for (const bool afrikaans : {false, true}) {
        run.language_afrikaans = afrikaans;
        run.data_folder = afrikaans ? "/skool/data" : "";
        for (const MenuScreen* m : {&top, &input, &book}) {
            texts += QString("== %1 %2\n").arg(menu_screen_name(m->kind()), afrikaans ? "af" : "en");
            for (const MenuEntry& e : menu_entries(m->kind()))
                texts += QString("%1 (key %2) %3 | %4\n").arg(e.index).arg(e.key).arg(m->caption(e.index), m->tooltip(e.index));
            texts += QStringList{m->backup_caption(), m->data_folder_caption(), m->data_folder_tooltip(),
                                 m->timeout_caption(), m->system_menu_caption(), m->system_menu_tooltip(),
                                 m->help_caption(), m->password_show_text()}
                         .join(" | ") +
                     '\n';
        }
    }
    EXPECT_TRUE(testing::matches_golden(texts, "shell/menu_texts.txt"));
}

TEST_F(Menus, TheTopMenuOpensTheSecondLevelAndNamesTheEntry) {
    ASSERT_TRUE(top.load());
    top.punte_menu_click(1);
    EXPECT_EQ(screens.shown, QStringList{"punte_menu1"});
    EXPECT_EQ(top.ops_stelsel, "CYCLE/TEST, CASS/CTA MARKS");
    EXPECT_EQ(run.menu_password_key, "MARKS_MENU:1");
    top.punte_menu_click(2);
    EXPECT_EQ(top.ops_stelsel, "");  // cleared after the mark book menu opened by click
    top.key_press('2');
    EXPECT_EQ(top.ops_stelsel, "MARKS BOOK");
    EXPECT_EQ(screens.shown, (QStringList{"punte_menu1", "punte_menu2", "punte_menu2"}));
}

TEST_F(Menus, KeysFourAndFiveAreSwappedOnTheMarkBookMenu) {
    ASSERT_TRUE(book.load());
    QStringList keys;
    const auto note = [&] { keys << run.menu_password_key; };
    book.punte_menu_click(4);
    note();
    for (const QChar key : {'4', '5', '2'}) {
        book.key_press(key);
        note();
    }
    EXPECT_EQ(screens.shown, (QStringList{"simbole_druk", "pboek_uitvoer", "simbole_druk", "pboek_inlees"}));
    EXPECT_EQ(keys, (QStringList{"MARKS2_MENU:4", "MARKS2_MENU:4", "MARKS2_MENU:5", "MARKS2_MENU:2"}));
}

TEST_F(Menus, AFolderWithoutMarksFilesIsReportedAndTheScreenStillOpens) {
    run.data_folder = path("empty");
    QDir().mkpath(run.data_folder);
    input.punte_menu_click(3);
    EXPECT_EQ(transcript(), "message Critical Ok []: Current folder (<drive>/empty) does not contain marks files ...\n"
                            "shown: punte_druk\nmodal: change_folder\n");
    // The older control table alone satisfies the menus.
    write_bytes(path("empty/Exp_Control.dbf"), "x");
    EXPECT_TRUE(input.data_folder_ok());
    EXPECT_EQ(dialogs.messages.size(), 1);
    // An empty data folder gives empty brackets.
    run.data_folder.clear();
    run.language_afrikaans = true;
    book.punte_menu_click(2);
    EXPECT_EQ(dialogs.texts().last(), "Bestaande gids () bevat nie punteleêrs nie ...");
}

TEST_F(Menus, AProtectedEntryIsRedAndClosedToEveryone) {
    // The system password "$ecure$key", then entry 2 of the top menu.
    dialogs.inputs << "$ecure$key" << "geheim" << "geheim";
    top.punte_menu_right_click(2);
    EXPECT_EQ(dialogs.beeps, 1);
    MenuScreen fresh(ctx, passwords, MenuKind::Top);
    ASSERT_TRUE(fresh.load());
    EXPECT_EQ(fresh.fore_colour(1), 0);
    EXPECT_EQ(fresh.fore_colour(2), 255);
    fresh.punte_menu_mouse_move(2);
    EXPECT_TRUE(fresh.password_show());
    fresh.form_mouse_move();
    EXPECT_FALSE(fresh.password_show());

    screens.shown.clear();
    fresh.punte_menu_click(2);
    EXPECT_EQ(screens.modal.last(), "sk1_wagwoord");
    EXPECT_TRUE(screens.shown.isEmpty());
    EXPECT_EQ(dialogs.beeps, 2);
}

TEST_F(Menus, ExitOfASecondLevelMenuShowsTheTopMenuAndTheTopExitOrZeroEndsTheRun) {
    input.key_press('0');
    EXPECT_EQ(transcript(), "ended\n");
    screens.ended = false;
    book.punte_exit_click();
    EXPECT_EQ(transcript(), "shown: punte_mnu\nunloaded: punte_menu2\n");
    top.punte_exit_click();
    EXPECT_EQ(transcript(), "shown: punte_mnu\nunloaded: punte_menu2 | punte_mnu | sk0_floating\nended\n");
}

TEST_F(Menus, BackupStartsTheVaultsProgramWhenItIsThere) {
    top.backup_click();
    EXPECT_EQ(transcript(), "\n");
    EXPECT_EQ(run.active_user_key, "admin");
    write_bytes(path("Apps/VELDO-VAULTS/VELDO-VAULTS.EXE"), "pe");
    top.backup_click();
    EXPECT_EQ(transcript(), "started: <drive>/Apps/VELDO-VAULTS/VELDO-VAULTS.EXE\n");
}

TEST_F(Menus, HelpNamesTheManualOfTheMenuAndTheWebButtonFails) {
    input.help_pdf_click();
    EXPECT_EQ(run.manual_file_name, "m_marks_eng.pdf");
    run.language_afrikaans = true;
    book.help_pdf_click();
    EXPECT_EQ(run.manual_file_name, "m_punteboek.pdf");
    // The web button fails with the platform error.
    top.www_call_click();
    EXPECT_EQ(transcript(), "message Critical Ok []: Object required\nmodal: acrobat_interface | acrobat_interface\n");
}

TEST_F(Menus, LoadingWritesTheAuditRecordAndSetsTheLabels) {
    run.school_name = "HOëRSKOOL DIE KRANS";
    run.data_folder = "/skool/data";
    ASSERT_TRUE(book.load());
    EXPECT_EQ(run.active_menu, 2);
    EXPECT_EQ(run.active_user_key, "marks");
    EXPECT_EQ(QStringList({book.ops_stelsel, book.ops_ops1, book.dir_disp(), run.data_folder, book.header.ops_datum,
                           book.header.ops_tyd}),
              QStringList({"MARK BOOK", "HOëRSKOOL DIE KRANS", "/SKOOL/DATA", "/skool/data", "2026.11.23", "10:15:30"}));
    EXPECT_EQ(QFileInfo(path("ProgramData/KESTRALIN/Audit_Trail.txt")).size(), 258);
}

TEST_F(Menus, EachSecondLevelLoadAppendsThePasswordRowsAgain) {
    write_bytes(run.program_folder + "/veldo-house-passwords.txt",
                "\"\xf3\xe5\xe3\xf2\xe5\xf4\"\r\n\"MARKS1_MENU:1\",\"\xf0\xf7\"\r\n");
    ASSERT_TRUE(input.load());
    ASSERT_TRUE(input.load());
    EXPECT_EQ(passwords.size(), 2);
    EXPECT_EQ(input.fore_colour(1), 255);
    EXPECT_EQ(run.system_password, "secret");
}

}  // namespace
}  // namespace veldo
