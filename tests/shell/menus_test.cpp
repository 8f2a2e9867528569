// The three menus: entries by mouse and key, passwords, the folder test.
#include <gtest/gtest.h>

#include "shell/menus.h"
#include "tests/support/shell_fixture.h"

namespace veldo {
namespace {

using testing::ShellFixture;
using testing::write_bytes;

struct Menus : ::testing::Test, ShellFixture {
    MenuScreen top{ctx, passwords, MenuKind::Top};
    MenuScreen book{ctx, passwords, MenuKind::Marks2};
    MenuScreen input{ctx, passwords, MenuKind::Marks1};
};

TEST_F(Menus, CaptionsAndTooltipsInBothLanguages) {
    EXPECT_EQ(top.caption(1), "CYCLE/OBE");
    EXPECT_EQ(top.tooltip(1), "CYCLE/TEST, CASS/CTA MARKS");
    EXPECT_EQ(top.tooltip(2), "MARKS BOOK");
    EXPECT_EQ(book.caption(4), "SYMBOL DISTRIBUTION");
    EXPECT_EQ(book.tooltip(4), "PRINT SYMBOL DISTRIBUTIONS FOR ALL USED SERIES");
    EXPECT_EQ(input.tooltip(1), "INPUT of CASS/CTA marks/percentages");
    run.language_afrikaans = true;
    EXPECT_EQ(top.caption(1), "SIKLUS/UGO");
    EXPECT_EQ(book.caption(5), "UITVOER na ADMIN");
    EXPECT_EQ(book.tooltip(4), "DRUK SIMBOLVERSPREIDINGS VIR GEBRUIKTE REEKSE");
    EXPECT_EQ(input.caption(2), "INLEES ASSESSERING");
    EXPECT_EQ(top.backup_caption(), "RUGSTEUN/HERWIN");
    EXPECT_EQ(top.system_menu_tooltip(), " Vertoon Stelselspyskaart ");
    run.data_folder = "/skool/data";
    EXPECT_EQ(top.data_folder_tooltip(), " VERANDER DATA-FOLDER VAN /skool/data NA ... ");
    run.data_folder.clear();
    run.language_afrikaans = false;
    EXPECT_EQ(top.data_folder_tooltip(), " CHANGE DATA FOLDER FROM  TO ... ");
}

TEST_F(Menus, TheTopMenuOpensTheSecondLevelAndNamesTheEntry) {
    ASSERT_TRUE(top.load());
    top.punte_menu_click(1);
    EXPECT_EQ(screens.shown, QStringList{"punte_menu1"});
    EXPECT_EQ(top.ops_stelsel, "CYCLE/TEST, CASS/CTA MARKS");
    EXPECT_EQ(run.menu_password_key, "MARKS_MENU:1");
    top.punte_menu_click(2);
    EXPECT_EQ(screens.shown.last(), "punte_menu2");
    EXPECT_EQ(top.ops_stelsel, "");  // cleared after the mark book menu opened by click
    top.key_press('2');
    EXPECT_EQ(top.ops_stelsel, "MARKS BOOK");
}

TEST_F(Menus, KeysFourAndFiveAreSwappedOnTheMarkBookMenu) {
    ASSERT_TRUE(book.load());
    book.punte_menu_click(4);
    EXPECT_EQ(screens.shown.last(), "simbole_druk");
    EXPECT_EQ(run.menu_password_key, "MARKS2_MENU:4");
    book.key_press('4');
    EXPECT_EQ(screens.shown.last(), "pboek_uitvoer");
    EXPECT_EQ(run.menu_password_key, "MARKS2_MENU:4");
    book.key_press('5');
    EXPECT_EQ(screens.shown.last(), "simbole_druk");
    EXPECT_EQ(run.menu_password_key, "MARKS2_MENU:5");
    book.key_press('2');
    EXPECT_EQ(screens.shown.last(), "pboek_inlees");
}

TEST_F(Menus, AFolderWithoutMarksFilesIsReportedAndTheScreenStillOpens) {
    run.data_folder = path("empty");
    QDir().mkpath(run.data_folder);
    input.punte_menu_click(3);
    EXPECT_EQ(dialogs.texts(), QStringList{"Current folder (" + path("empty") + ") does not contain marks files ..."});
    EXPECT_EQ(dialogs.messages.first().icon, MsgIcon::Critical);
    EXPECT_EQ(screens.modal, QStringList{"change_folder"});
    EXPECT_EQ(screens.shown, QStringList{"punte_druk"});
    // The older control table alone satisfies the menus.
    write_bytes(path("empty/Exp_Control.dbf"), "x");
    EXPECT_TRUE(input.data_folder_ok());
    EXPECT_EQ(dialogs.messages.size(), 1);
}

TEST_F(Menus, AnEmptyDataFolderGivesEmptyBrackets) {
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
    EXPECT_TRUE(screens.ended);
    EXPECT_TRUE(screens.unloaded.isEmpty());
    screens.ended = false;
    book.punte_exit_click();
    EXPECT_EQ(screens.unloaded, QStringList{"punte_menu2"});
    EXPECT_EQ(screens.shown, QStringList{"punte_mnu"});
    top.punte_exit_click();
    EXPECT_EQ(screens.unloaded.mid(1), (QStringList{"punte_mnu", "sk0_floating"}));
    EXPECT_TRUE(screens.ended);
}

TEST_F(Menus, BackupStartsTheVaultsProgramWhenItIsThere) {
    top.backup_click();
    EXPECT_TRUE(screens.started.isEmpty());
    EXPECT_TRUE(dialogs.messages.isEmpty());
    EXPECT_EQ(run.active_user_key, "admin");
    write_bytes(path("Apps/VELDO-VAULTS/VELDO-VAULTS.EXE"), "pe");
    top.backup_click();
    EXPECT_EQ(screens.started, QStringList{path("Apps/VELDO-VAULTS/VELDO-VAULTS.EXE")});
}

TEST_F(Menus, HelpNamesTheManualOfTheMenuAndTheWebButtonFails) {
    input.help_pdf_click();
    EXPECT_EQ(run.manual_file_name, "m_marks_eng.pdf");
    run.language_afrikaans = true;
    book.help_pdf_click();
    EXPECT_EQ(run.manual_file_name, "m_punteboek.pdf");
    EXPECT_EQ(screens.modal, (QStringList{"acrobat_interface", "acrobat_interface"}));
    // The web button fails with the platform error.
    top.www_call_click();
    EXPECT_EQ(dialogs.texts(), QStringList{"Object required"});
}

TEST_F(Menus, LoadingWritesTheAuditRecordAndSetsTheLabels) {
    run.school_name = "HOëRSKOOL DIE KRANS";
    run.data_folder = "/skool/data";
    ASSERT_TRUE(book.load());
    EXPECT_EQ(run.active_menu, 2);
    EXPECT_EQ(run.active_user_key, "marks");
    EXPECT_EQ(book.ops_stelsel, "MARK BOOK");
    EXPECT_EQ(book.ops_ops1, "HOëRSKOOL DIE KRANS");
    EXPECT_EQ(book.dir_disp(), "/SKOOL/DATA");
    EXPECT_EQ(run.data_folder, "/skool/data");
    EXPECT_EQ(book.header.ops_datum, "2026.11.23");
    EXPECT_EQ(book.header.ops_tyd, "10:15:30");
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
