#include <gtest/gtest.h>

#include <QDir>

#include "shell/floating_menu.h"
#include "tests/support/shell_fixture.h"

using namespace veldo;
using namespace veldo::testing;

namespace {

// The family's programs lie beside this one, below the root folder.
struct Window : ShellFixture {
    FloatingMenu menu{ctx};
    QString root = run.root_folder;
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
              (QStringList{"VELDO-CLERK", "VELDO-KINDREDS", "VELDO-PURSE", "VELDO-SHELF", "VELDO-CREWS", "VELDO-DIARY",
                           "VELDO-SHIFT", "VELDO-SCROL", "VELDO-TOMES", "VELDO-PLANS", "VELDO-CONDUCTOR",
                           "VELDO-VIEWER", "VELDO-TALLY", "VELDO-VAULTS", "VELDO-CAMPUS"}));
    // Every program that starts has its button under the same index.
    QStringList rows;
    for (const auto& l : FloatingMenu::launchers()) {
        rows << QString::number(l.index) + " " + l.program + " " + l.path;
        bool found = false;
        for (const auto& b : FloatingMenu::buttons())
            if (b.index == l.index) {
                EXPECT_EQ(b.caption, l.program);
                found = true;
            }
        EXPECT_TRUE(found) << l.index;
    }
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

// Each load empties the box and shows each environment entry on a line.
TEST(FloatingMenu, LoadShowsTheEnvironmentAndExitUnloads) {
    Window w;
    w.menu.load();
    EXPECT_EQ(w.menu.environment_text(), "HOME=/home/juffrou\nLANG=af_ZA.UTF-8\n");
    w.screens.environment = QStringList{"PATH=/usr/bin"};
    w.menu.load();
    EXPECT_EQ(w.menu.environment_text(), "PATH=/usr/bin\n");
    w.screens.environment.clear();
    w.menu.load();
    EXPECT_EQ(w.menu.environment_text(), "");
    w.menu.sk0f_exit();
    EXPECT_EQ(w.screens.unloaded, QStringList{screen::sk0_floating});
}

// Every launcher starts its own program (this one and the two that share the
// house folder too), as often as it is pressed; the window stays open.
TEST(FloatingMenu, EveryLauncherStartsItsOwnProgram) {
    Window w;
    QStringList expected;
    for (const auto& l : FloatingMenu::launchers()) expected << QStringList(2, w.install(l.path.mid(1)));
    for (const auto& l : FloatingMenu::launchers()) {
        w.menu.sk0f_menu_click(l.index);
        w.menu.sk0f_menu_click(l.index);
    }
    EXPECT_EQ(w.screens.started, expected);
    EXPECT_TRUE(w.dialogs.messages.isEmpty());
    EXPECT_TRUE(w.screens.unloaded.isEmpty());
}

TEST(FloatingMenu, AProgramIsFoundIgnoringCaseOrElseTheUserIsToldToInstallIt) {
    const struct {
        const char* installed;  // nullptr: nothing; ending in '/': a folder
        int index;
        bool afrikaans;
        const char* message;  // nullptr: the program starts
        const char* why;
    } rows[] = {
        {"VELDO-PURSE/VELDO-PURSE.EXE", 2, false, nullptr, "installed"},
        {"veldo-shelf/Veldo-Shelf.exe", 3, false, nullptr, "found ignoring case"},
        {"VELDO-CREWS/VELDO-CREWS", 4, false, nullptr, "found without the .EXE ending"},
        {nullptr, 5, false, "Please install 'VELDO-DIARY' (see www.kestralin.co.za)", "missing"},
        {nullptr, 13, true, "Installeer asb 'VELDO-VAULTS' (sien www.kestralin.co.za)", "missing, in Afrikaans"},
        {"VELDO-SHIFT/VELDO-SHIFT.EXE/", 6, false, "Please install 'VELDO-SHIFT' (see www.kestralin.co.za)",
         "a folder is no program"},
        {"VELDO-SCROL/VELDO-PURSE.EXE", 2, false, "Please install 'VELDO-PURSE' (see www.kestralin.co.za)",
         "a program in the wrong folder"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.why);
        Window w;
        w.run.language_afrikaans = r.afrikaans;
        QString program;
        if (r.installed && QString(r.installed).endsWith('/'))
            QDir().mkpath(w.root + "/" + r.installed);
        else if (r.installed)
            program = w.install(r.installed);
        w.menu.sk0f_menu_click(r.index);
        EXPECT_TRUE(w.screens.unloaded.isEmpty());
        if (!r.message) {
            EXPECT_EQ(w.screens.started, QStringList{program});
            EXPECT_TRUE(w.dialogs.messages.isEmpty());
            continue;
        }
        EXPECT_TRUE(w.screens.started.isEmpty());
        ASSERT_EQ(w.dialogs.messages.size(), 1);
        EXPECT_EQ(w.dialogs.messages[0].text, r.message);
        EXPECT_EQ(w.dialogs.messages[0].icon, MsgIcon::Critical);
        EXPECT_EQ(w.dialogs.messages[0].buttons, MsgButtons::Ok);
    }
}

TEST(FloatingMenu, IndexNotInTheTableDoesNothing) {
    // Installed or not, the buttons without a program start nothing.
    Window w;
    w.install("VELDO-CLERK/VELDO-CLERK.EXE");
    for (int index : {0, 1, 8, 9, 15, -1, 99}) w.menu.sk0f_menu_click(index);
    EXPECT_TRUE(w.screens.started.isEmpty());
    EXPECT_TRUE(w.dialogs.messages.isEmpty());
    EXPECT_TRUE(w.screens.unloaded.isEmpty());
}
