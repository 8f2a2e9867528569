// Start-up without windows: folders, family files, version stamp, settings;
// the frame and the splash: second copy, language, hand-over to the menu.
#include <gtest/gtest.h>

#include "shell/splash.h"
#include "shell/startup.h"
#include "store/school_record.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

using testing::FakeScreens;
using testing::TempDrive;
using testing::read_bytes;
using testing::write_bytes;

// An install tree: <drive>/Apps/VELDO-TALLY/ with siblings beside it.
struct Install : TempDrive {
    QString root = path("Apps");
    QString program = path("Apps/VELDO-TALLY");
    QString family = path("ProgramData/KESTRALIN");
    Install() { QDir().mkpath(program); }
};

// A machine with the family's programs beside this one, step by step: the
// paths found, then the files below the family folder after each step (the
// program's version reads <version>). Only shared text and network files are
// copied, none overwritten; the backup program's path names hold eleven empty
// items; the version listing is made once a day.
TEST(MachinePaths, FindTheFoldersCopyTheFamilysFilesAndStampTheVersions) {
    Install t;
    for (const char* name : {"VELDO-HOUSE/house.txt", "VELDO-HOUSE/NETWORK.ini", "VELDO-HOUSE/tool.exe.txt",
                             "VELDO-HOUSE/readme.md", "VELDO-INSTAL/setup.txt", "VELDO-HOUSE/VELDO-HOUSE.EXE"})
        write_bytes(t.root + "/" + name, name);
    write_bytes(t.program + "/veldo-tally", "elf");
    write_bytes(t.family + "/setup.txt", "kept");
    QDir().mkpath(t.root + "/VELDO-VAULTS");
    const QString listing = t.family + "/Version_Numbers.txt", stamp = t.family + "/Version_Numbers.dte";
    QString log;
    const auto step = [&](const QString& what) {
        log += "== " + what + "\n" +
               testing::transcript(t, FakeScreens(), {"ProgramData"})
                   .replace(t.dir.path().toUpper(), "<DRIVE>")
                   .replace(program_version(), "<version>");
    };
    refresh_machine_paths(t.run, t.program);
    EXPECT_EQ(QStringList({t.run.program_folder, t.run.root_folder, t.run.family_folder, t.run.product_folder}),
              QStringList({t.program, t.root, t.family, t.family + "/VELDO-TALLY"}));
    EXPECT_TRUE(QFileInfo(t.run.product_folder).isDir());
    EXPECT_TRUE(QFileInfo(t.path("KESTRALIN")).isDir());
    step("the first refresh");
    write_bytes(t.root + "/VELDO-HOUSE/later.txt", "later");
    copy_family_files(t.run, "VELDO-HOUSE");
    write_bytes(listing, "hand-made");
    step("an existing sibling folder in the family is left alone");
    // The same day the listing stays, also when the stamp can't be made out
    // (it counts as today); the next day it is made anew.
    for (const char* dte : {"2026/11/23\r\n", "gibberish\r\n"}) {
        write_bytes(stamp, dte);
        stamp_versions(t.run);
        step("the same day, stamp " + QString(dte).trimmed());
    }
    t.run.today = QDate(2026, 11, 24);
    write_bytes(stamp, "2026/11/23\r\n");
    stamp_versions(t.run);
    step("the next day");
    EXPECT_TRUE(testing::matches_golden(log, "shell/machine_paths.txt"));

    // A program in another folder keeps its own folder.
    const QString build = t.path("src/build");
    QDir().mkpath(build);
    refresh_machine_paths(t.run, build);
    EXPECT_EQ(QStringList({t.run.program_folder, t.run.root_folder}), QStringList({build, t.path("src")}));
}

// The language is line 2 of the family's setup.txt, brought over from the
// program folder when that holds one; a save rewrites line 2 only (the file
// a save makes where there was none is Splash.PicksAPastelAndTheLanguageAndHandsOverToTheTopMenu's).
TEST(SetupLanguage, IsReadFromLineTwoAndWrittenBackKeepingTheRest) {
    const struct {
        const char *program_copy, *family_copy;
        bool before, after;
        const char* why;
    } rows[] = {
        {nullptr, "\"HO\xebRSKOOL\",\"x\",12\r\n#TRUE#,\"keep\"\r\n\"line three\"\r\n", false, true, "line two"},
        {nullptr, nullptr, false, false, "English without a file"},
        {"\"\"\r\n#TRUE#\r\n", nullptr, false, true, "the program folder's copy comes first"},
        {nullptr, "\"only one line", true, true, "a short or stray file keeps the flag"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.why);
        Install t;
        refresh_machine_paths(t.run, t.program);
        if (r.program_copy) write_bytes(t.program + "/setup.txt", r.program_copy);
        if (r.family_copy) write_bytes(t.family + "/setup.txt", r.family_copy);
        t.run.language_afrikaans = r.before;
        read_setup_language(t.run);
        EXPECT_EQ(t.run.language_afrikaans, r.after);
        EXPECT_EQ(QFileInfo::exists(t.family + "/setup.txt"), r.program_copy || r.family_copy);
    }
    Install t;
    refresh_machine_paths(t.run, t.program);
    write_bytes(t.family + "/setup.txt", "\"HO\xebRSKOOL\",\"x\",12\r\n#TRUE#,\"keep\"\r\n\"line three\"\r\n");
    t.run.language_afrikaans = false;
    ASSERT_TRUE(save_setup_language(t.run));
    EXPECT_EQ(read_bytes(t.family + "/setup.txt"),
              QByteArray("\"HO\xebRSKOOL\",\"x\",12\r\n#FALSE#,\"keep\"\r\n\"line three\"\r\n"));
}

TEST(SchoolName, IsReadFromTheRecordAtTheDriveRootWhenThere) {
    Install t;
    read_school_name(t.run, *t.store);
    EXPECT_EQ(t.run.school_name, "");
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
    RecordBuffer rec(&school_record_layout());
    rec.set_text("SD_SKOOL", "HOëRSKOOL DIE KRANS");
    write_bytes(t.path("skl_dta_random.txt"), rec.bytes());
    read_school_name(t.run, *t.store);
    EXPECT_EQ(t.run.school_name, "HOëRSKOOL DIE KRANS");
    EXPECT_EQ(t.store->open_file_count(), 0);
}

// The start reads time_out.txt in the program folder, where the TIME-OUT
// button writes it, also when the program runs from another folder. A
// negative limit, from an older version or by hand, counts as the default
// instead of locking the workstation.
TEST(Startup, SetsYearProgramFolderTimeOutAndColours) {
    Install t;
    write_bytes(t.program + "/time_out.txt", "-60 \r\n");
    run_startup(t.run, *t.store, t.program);
    EXPECT_EQ(QStringList({t.run.current_year, t.run.start_folder, QDir::currentPath()}),
              QStringList({"2026", t.program, t.program}));
    EXPECT_EQ(t.run.timeout_seconds, 300);
    EXPECT_EQ(t.run.backdrop_green, 192);

    const QString bin = t.path("Apps/bin");
    write_bytes(bin + "/time_out.txt", " 900 \r\n");
    write_bytes(t.program + "/time_out.txt", "120\r\n");
    run_startup(t.run, *t.store, bin);
    EXPECT_EQ(t.run.program_folder, t.program);
    EXPECT_EQ(t.run.timeout_seconds, 120);
}

// A start, row by row: whether the load goes on, its pastel (picked by the
// random number), labels, language boxes and timer; then after a language
// button or the timer, the language, the product folder the folder search
// makes, what the user saw and the family's setup.txt. The timer is played
// after a button too: it must not fire then.
TEST(Splash, PicksAPastelAndTheLanguageAndHandsOverToTheTopMenu) {
    const struct {
        const char* why;
        bool second_copy;
        double random;
        QByteArray setup;  // the family's setup.txt before; empty: none
        int button;        // 1 Afrikaans, 2 English; 0: the timer only
    } rows[] = {
        {"a second copy is refused in English and ends the run before any folder search", true, 0.5, "", 0},
        {"the first pastel; a button saves the choice and starts at once", false, 0.0, "", 1},
        {"the last pastel; the timer keeps the stored language and its file", false, 0.99,
         "\"SKOOL\"\r\n#TRUE#\r\n\"ander\"\r\n", 0},
    };
    QString outcome;
    for (const auto& r : rows) {
        testing::ShellFixture t;
        const QString setup = t.path("ProgramData/KESTRALIN/setup.txt");
        if (!r.setup.isEmpty()) write_bytes(setup, r.setup);
        Splash s(t.ctx, t.run.program_folder, [&r] { return r.second_copy; }, [&r] { return r.random; });
        const bool goes_on = s.load();
        outcome += QString("== %1\nload %2, colour %3, '%4' '%5', boxes %6%7, timer %8, year %9\n")
                       .arg(r.why)
                       .arg(goes_on)
                       .arg(s.skin_colour(), 6, 16, QChar('0'))
                       .arg(QString(s.lblVersion).replace(program_version(), "<version>"), s.lblProductName)
                       .arg(s.chk_lang[1])
                       .arg(s.chk_lang[2])
                       .arg(s.timer_enabled)
                       .arg(t.run.current_year);
        if (r.button) s.chk_lang_click(r.button);
        if (goes_on) s.timer1_timer();
        outcome += QString("afrikaans %1, product folder %2, setup.txt '%3'\n")
                       .arg(t.run.language_afrikaans)
                       .arg(QFileInfo::exists(t.path("ProgramData/KESTRALIN/VELDO-TALLY")))
                       .arg(testing::shown_bytes(read_bytes(setup))) +
                   testing::transcript(t, t.screens);
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/splash_starts.txt"));
    EXPECT_EQ(second_copy_message(true), "VELDO-TALLY stelsel reeds gelaai - sien 'TASK BAR' ...");
}

TEST(Splash, TheFrameRefusesToCloseAndBringsTheTopMenuBack) {
    testing::ShellFixture t;
    MainFrame frame(t.ctx);
    frame.load(t.run.program_folder);
    EXPECT_EQ(t.run.timeout_seconds, 300);
    EXPECT_FLOAT_EQ(t.run.last_activity, 10 * 3600 + 15 * 60 + 30);
    EXPECT_TRUE(frame.query_unload());
    EXPECT_EQ(t.screens.shown, QStringList{"punte_mnu"});
}

}  // namespace
}  // namespace veldo
