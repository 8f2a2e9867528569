#pragma once
// A shell on a temporary drive: run state, record store, scripted dialogs,
// fake screens and a fixed clock, with a program folder and a data folder
// that holds marks files.

#include "shell/passwords.h"
#include "shell/screens.h"
#include "tests/support/fake_screens.h"
#include "tests/support/temp_drive.h"

namespace veldo::testing {

struct ShellFixture : TempDrive {
    FakeScreens screens;
    ShellContext ctx{run, *store, dialogs, screens, Clock{}};
    PasswordLists passwords;
    QDate date{2026, 11, 23};
    QTime time{10, 15, 30};

    ShellFixture() {
        ctx.clock.today = [this] { return date; };
        ctx.clock.now = [this] { return time; };
        run.program_folder = path("Apps/VELDO-TALLY");
        run.root_folder = path("Apps");
        QDir().mkpath(run.program_folder);
        write_bytes(data("exp_mrk_control.txt"), {});
    }
};

}  // namespace veldo::testing
