#include <gtest/gtest.h>

#include <QDir>

#include "shell/floating_menu.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

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

// Each button with the program it starts, if any, under the same index.
TEST(FloatingMenuTable, ButtonsCarryTheFamilysPrograms) {
    QString table;
    for (const auto& b : FloatingMenu::buttons()) {
        table += QString::number(b.index) + " " + b.caption;
        for (const auto& l : FloatingMenu::launchers())
            if (l.index == b.index) table += " -> " + l.program + " " + l.path;
        table += '\n';
    }
    EXPECT_TRUE(matches_golden(table, "shell/floating_buttons.txt"));
}

// Each load empties the box and shows each environment entry on a line.
TEST(FloatingMenu, LoadShowsTheEnvironmentAndExitUnloads) {
    Window w;
    QStringList shown;
    for (const QStringList& environment : {w.screens.environment, QStringList{"PATH=/usr/bin"}, QStringList()}) {
        w.screens.environment = environment;
        w.menu.load();
        shown << w.menu.environment_text();
    }
    EXPECT_EQ(shown, (QStringList{"HOME=/home/juffrou\nLANG=af_ZA.UTF-8\n", "PATH=/usr/bin\n", ""}));
    w.menu.sk0f_exit();
    EXPECT_EQ(w.screens.unloaded, QStringList{screen::sk0_floating});
}

// Every launcher starts its own program (this one and the two that share the
// house folder too), as often as it is pressed; the window stays open. The
// buttons without a program start nothing, installed or not.
TEST(FloatingMenu, EveryLauncherStartsItsOwnProgram) {
    Window w;
    w.install("VELDO-CLERK/VELDO-CLERK.EXE");
    QStringList expected;
    for (const auto& l : FloatingMenu::launchers()) expected << QStringList(2, w.install(l.path.mid(1)));
    for (int index : {0, 1, 8, 9, 15, -1, 99}) w.menu.sk0f_menu_click(index);
    for (const auto& l : FloatingMenu::launchers()) {
        w.menu.sk0f_menu_click(l.index);
        w.menu.sk0f_menu_click(l.index);
    }
    EXPECT_EQ(transcript(w, w.screens), "started: " + expected.join(" | ").replace(w.dir.path(), "<drive>") + "\n");
}

// Button by button, what is installed below the root, then what the user saw.
TEST(FloatingMenu, AProgramIsFoundIgnoringCaseOrElseTheUserIsToldToInstallIt) {
    const struct {
        const char* installed;  // nullptr: nothing; ending in '/': a folder
        int index;
        bool afrikaans;
        const char* why;
    } rows[] = {
        {"veldo-shelf/Veldo-Shelf.exe", 3, false, "found ignoring case"},
        {"VELDO-CREWS/VELDO-CREWS", 4, false, "found without the .EXE ending"},
        {nullptr, 5, false, "missing"},
        {nullptr, 13, true, "missing, in Afrikaans"},
        {"VELDO-SHIFT/VELDO-SHIFT.EXE/", 6, false, "a folder is no program"},
        {"VELDO-SCROL/VELDO-PURSE.EXE", 2, false, "a program in the wrong folder"},
    };
    QString outcome;
    for (const auto& r : rows) {
        Window w;
        w.run.language_afrikaans = r.afrikaans;
        if (r.installed && QString(r.installed).endsWith('/'))
            QDir().mkpath(w.root + "/" + r.installed);
        else if (r.installed)
            w.install(r.installed);
        w.menu.sk0f_menu_click(r.index);
        const char* installed = r.installed ? r.installed : "nothing";
        outcome += QString("== %1: button %2, %3\n").arg(r.why).arg(r.index).arg(installed) + transcript(w, w.screens);
    }
    EXPECT_TRUE(matches_golden(outcome, "shell/floating_launches.txt"));
}
