#include <gtest/gtest.h>

#include <QDir>

#include "shell/floating_menu.h"
#include "tests/support/fake_screens.h"
#include "tests/support/temp_drive.h"

using namespace veldo;
using namespace veldo::testing;

namespace {

struct FloatingMenuTest : ::testing::Test {
    TempDrive drive;
    FakeScreens screens;
    ShellContext ctx{drive.run, *drive.store, drive.dialogs, screens, Clock{}};
    FloatingMenu menu{ctx};
    QString root;

    FloatingMenuTest() {
        root = drive.path("KESTRALIN");
        QDir().mkpath(root);
        drive.run.root_folder = root;
    }
    QString install(const QString& relative) {
        const QString path = root + "/" + relative;
        write_bytes(path, "MZ");
        return path;
    }
};

}  // namespace

TEST(FloatingMenuTable, ButtonsCarryTheFamilysPrograms) {
    QStringList captions;
    for (const auto& b : FloatingMenu::buttons()) captions << b.caption;
    EXPECT_EQ(captions,
              (QStringList{"VELDO-CLERK", "VELDO-KINDREDS", "VELDO-PURSE", "VELDO-SHELF",
                           "VELDO-CREWS", "VELDO-DIARY", "VELDO-SHIFT", "VELDO-SCROL",
                           "VELDO-TOMES", "VELDO-PLANS", "VELDO-CONDUCTOR", "VELDO-VIEWER",
                           "VELDO-TALLY", "VELDO-VAULTS", "VELDO-CAMPUS"}));
    // Every program that starts has its button under the same index.
    for (const auto& l : FloatingMenu::launchers()) {
        bool found = false;
        for (const auto& b : FloatingMenu::buttons())
            if (b.index == l.index) {
                EXPECT_EQ(b.caption, l.program);
                found = true;
            }
        EXPECT_TRUE(found) << l.index;
    }
}

TEST(FloatingMenuTable, LauncherPaths) {
    QStringList rows;
    for (const auto& l : FloatingMenu::launchers())
        rows << QString::number(l.index) + " " + l.program + " " + l.path;
    EXPECT_EQ(rows, (QStringList{"2 VELDO-PURSE /VELDO-PURSE/VELDO-PURSE.EXE",
                                 "3 VELDO-SHELF /VELDO-SHELF/VELDO-SHELF.EXE",
                                 "4 VELDO-CREWS /VELDO-CREWS/VELDO-CREWS.EXE",
                                 "5 VELDO-DIARY /VELDO-DIARY/VELDO-DIARY.EXE",
                                 "6 VELDO-SHIFT /VELDO-SHIFT/VELDO-SHIFT.EXE",
                                 "7 VELDO-SCROL /VELDO-SCROL/VELDO-SCROL.EXE",
                                 "10 VELDO-CONDUCTOR /VELDO-HOUSE/VELDO-CONDUCTOR.EXE",
                                 "11 VELDO-VIEWER /VELDO-VIEWER/VELDO-VIEWER.EXE",
                                 "12 VELDO-TALLY /VELDO-TALLY/VELDO-TALLY.EXE",
                                 "13 VELDO-VAULTS /VELDO-VAULTS/VELDO-VAULTS.EXE",
                                 "14 VELDO-CAMPUS /VELDO-HOUSE/VELDO-CAMPUS.EXE"}));
}

TEST(FloatingMenuTable, MakerWebAddress) { EXPECT_EQ(kMakerWebAddress, "www.kestralin.co.za"); }

// Load.

TEST_F(FloatingMenuTest, LoadShowsEachEnvironmentEntryOnALine) {
    menu.load();
    EXPECT_EQ(menu.environment_text(), "HOME=/home/juffrou\nLANG=af_ZA.UTF-8\n");
}

TEST_F(FloatingMenuTest, LoadEmptiesTheBoxFirst) {
    menu.load();
    screens.environment = QStringList{"PATH=/usr/bin"};
    menu.load();
    EXPECT_EQ(menu.environment_text(), "PATH=/usr/bin\n");
}

TEST_F(FloatingMenuTest, EmptyEnvironmentGivesEmptyBox) {
    screens.environment.clear();
    menu.load();
    EXPECT_EQ(menu.environment_text(), "");
}

// Starting programs.

TEST_F(FloatingMenuTest, InstalledProgramStartsAndWindowStaysOpen) {
    const QString purse = install("VELDO-PURSE/VELDO-PURSE.EXE");
    menu.sk0f_menu_click(2);
    EXPECT_EQ(screens.started, QStringList{purse});
    EXPECT_TRUE(screens.unloaded.isEmpty());
    EXPECT_TRUE(drive.dialogs.messages.isEmpty());
}

TEST_F(FloatingMenuTest, EveryLauncherStartsItsOwnProgram) {
    QStringList expected;
    for (const auto& l : FloatingMenu::launchers()) expected << install(l.path.mid(1));
    for (const auto& l : FloatingMenu::launchers()) menu.sk0f_menu_click(l.index);
    EXPECT_EQ(screens.started, expected);
    EXPECT_TRUE(drive.dialogs.messages.isEmpty());
}

TEST_F(FloatingMenuTest, HouseProgramsShareOneFolder) {
    const QString conductor = install("VELDO-HOUSE/VELDO-CONDUCTOR.EXE");
    const QString campus = install("VELDO-HOUSE/VELDO-CAMPUS.EXE");
    menu.sk0f_menu_click(10);
    menu.sk0f_menu_click(14);
    EXPECT_EQ(screens.started, (QStringList{conductor, campus}));
}

TEST_F(FloatingMenuTest, ProgramIsFoundIgnoringCase) {
    const QString shelf = install("veldo-shelf/Veldo-Shelf.exe");
    menu.sk0f_menu_click(3);
    EXPECT_EQ(screens.started, QStringList{shelf});
}

TEST_F(FloatingMenuTest, ProgramWithoutExeEndingIsFound) {
    const QString crews = install("VELDO-CREWS/VELDO-CREWS");
    menu.sk0f_menu_click(4);
    EXPECT_EQ(screens.started, QStringList{crews});
}

TEST_F(FloatingMenuTest, StartingTwiceStartsTwice) {
    const QString viewer = install("VELDO-VIEWER/VELDO-VIEWER.EXE");
    menu.sk0f_menu_click(11);
    menu.sk0f_menu_click(11);
    EXPECT_EQ(screens.started, (QStringList{viewer, viewer}));
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(FloatingMenuTest, MissingProgramAsksForInstallInEnglish) {
    menu.sk0f_menu_click(5);
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text, "Please install 'VELDO-DIARY' (see www.kestralin.co.za)");
    EXPECT_EQ(drive.dialogs.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(drive.dialogs.messages[0].buttons, MsgButtons::Ok);
    EXPECT_TRUE(screens.started.isEmpty());
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(FloatingMenuTest, MissingProgramAsksForInstallInAfrikaans) {
    drive.run.language_afrikaans = true;
    menu.sk0f_menu_click(13);
    ASSERT_EQ(drive.dialogs.messages.size(), 1);
    EXPECT_EQ(drive.dialogs.messages[0].text, "Installeer asb 'VELDO-VAULTS' (sien www.kestralin.co.za)");
    EXPECT_EQ(drive.dialogs.messages[0].icon, MsgIcon::Critical);
    EXPECT_TRUE(screens.started.isEmpty());
}

TEST_F(FloatingMenuTest, FolderWithoutProgramIsMissing) {
    QDir().mkpath(root + "/VELDO-SHIFT/VELDO-SHIFT.EXE");  // a folder, not a program
    menu.sk0f_menu_click(6);
    EXPECT_TRUE(screens.started.isEmpty());
    EXPECT_EQ(drive.dialogs.texts(), QStringList{"Please install 'VELDO-SHIFT' (see www.kestralin.co.za)"});
}

TEST_F(FloatingMenuTest, ProgramInTheWrongFolderIsMissing) {
    install("VELDO-SCROL/VELDO-PURSE.EXE");
    menu.sk0f_menu_click(2);
    EXPECT_TRUE(screens.started.isEmpty());
    EXPECT_EQ(drive.dialogs.texts(), QStringList{"Please install 'VELDO-PURSE' (see www.kestralin.co.za)"});
}

TEST_F(FloatingMenuTest, ThisProgramIsStartedLikeAnyOther) {
    const QString tally = install("VELDO-TALLY/VELDO-TALLY.EXE");
    menu.sk0f_menu_click(12);
    EXPECT_EQ(screens.started, QStringList{tally});
}

TEST_F(FloatingMenuTest, IndexNotInTheTableDoesNothing) {
    // Installed or not, the buttons without a program start nothing.
    install("VELDO-CLERK/VELDO-CLERK.EXE");
    for (int index : {0, 1, 8, 9, 15, -1, 99}) menu.sk0f_menu_click(index);
    EXPECT_TRUE(screens.started.isEmpty());
    EXPECT_TRUE(drive.dialogs.messages.isEmpty());
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(FloatingMenuTest, ExitUnloadsTheWindow) {
    menu.sk0f_exit();
    EXPECT_EQ(screens.unloaded, QStringList{screen::sk0_floating});
}
