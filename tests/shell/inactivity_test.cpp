// The inactivity watcher, the timed closing message and the time-out button,
// on a fake clock: no test waits.
#include <gtest/gtest.h>

#include "shell/inactivity.h"
#include "shell/screens.h"
#include "shell/startup.h"
#include "tests/support/fake_screens.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::FakeScreens;
using testing::read_bytes;
using testing::TempDrive;

// A frame with a fake clock and mouse, and a record of closing messages.
struct Frame : TempDrive {
    QString program = path("Apps/VELDO-TALLY");
    int now_ms = 0;
    FakeScreens screens;
    ShellContext ctx{run, *store, dialogs, screens, Clock{}};
    struct Shown {
        QString message, title;
        int duration_ms;
    };
    QList<Shown> closing;
    std::function<void()> during_warning;
    InactivityWatcher watcher{ctx, [this](const QString& m, const QString& t, int d) {
                                  closing.append({m, t, d});
                                  if (during_warning) during_warning();
                              }};

    Frame() {
        QDir().mkpath(program);
        run.program_folder = program;
        ctx.clock.now = [this] { return QTime(0, 0).addMSecs(now_ms); };
        run.timeout_seconds = 300;
    }
    void at(double seconds) { now_ms = int(seconds * 1000.0 + 0.5); }
};

TEST(Inactivity, FirstTickOnlyStoresTheMouse) {
    Frame f;
    f.run.last_activity = 1000;
    f.at(1001);
    f.watcher.tick({10, 10});
    EXPECT_EQ(f.run.last_activity, 1000);
    f.at(1002);
    f.watcher.tick({10, 10});
    EXPECT_EQ(f.run.last_activity, 1000);
    f.at(1003.5);
    f.watcher.tick({10, 11});
    EXPECT_EQ(f.run.last_activity, 1003.5);
    f.at(1004);
    f.watcher.tick({11, 11});
    EXPECT_EQ(f.run.last_activity, 1004);
    EXPECT_TRUE(f.dialogs.messages.isEmpty());
}

TEST(Inactivity, ResetActivityTakesTheClock) {
    Frame f;
    f.at(43201.5);
    reset_activity(f.run, f.ctx.clock);
    EXPECT_EQ(f.run.last_activity, 43201.5);
}

TEST(Inactivity, ZeroLimitNeverWarnsOrCloses) {
    Frame f;
    f.run.timeout_seconds = 0;
    f.run.last_activity = 0;
    f.screens.show(screen::punte_mnu);
    f.screens.show(screen::punte_menu1);
    for (int s = 1; s < 86400; s += 997) {
        f.at(s);
        f.watcher.tick({5, 5});
    }
    EXPECT_TRUE(f.dialogs.messages.isEmpty());
    EXPECT_TRUE(f.closing.isEmpty());
    EXPECT_TRUE(f.screens.unloaded.isEmpty());
}

TEST(Inactivity, WarnsFiveSecondsBeforeTheLimit) {
    Frame f;
    f.run.last_activity = 1000;
    f.at(1295);  // 300 - 5 + 1000 is not less than 1295
    f.watcher.tick({1, 1});
    f.watcher.tick({1, 1});
    EXPECT_TRUE(f.dialogs.messages.isEmpty());
    f.at(1295.1);
    f.watcher.tick({1, 1});
    ASSERT_EQ(f.dialogs.messages.size(), 1);
    EXPECT_EQ(f.dialogs.messages[0].text, "1");
    EXPECT_EQ(f.dialogs.messages[0].buttons, MsgButtons::Ok);
    EXPECT_EQ(f.dialogs.messages[0].icon, MsgIcon::None);
    ASSERT_EQ(f.closing.size(), 1);
    EXPECT_EQ(f.closing[0].message, "");
    EXPECT_EQ(f.closing[0].title, "TIME-OUT");
    EXPECT_EQ(f.closing[0].duration_ms, 5000);
    // The clock did not move during the warning: no close yet.
    EXPECT_TRUE(f.screens.shown.isEmpty());
    EXPECT_FALSE(f.watcher.warning());
}

TEST(Inactivity, LimitOfFiveOrBelowWarnsAtOnce) {
    Frame f;
    f.run.timeout_seconds = 5;
    f.run.last_activity = 1000;
    f.at(1000);
    f.watcher.tick({0, 0});
    EXPECT_TRUE(f.closing.isEmpty());
    f.at(1000.1);
    f.watcher.tick({0, 0});
    EXPECT_EQ(f.closing.size(), 1);

    // Below five the test holds even with no time gone by.
    Frame g;
    g.run.timeout_seconds = 3;
    g.at(2000);
    g.watcher.tick({0, 0});
    g.watcher.tick({1, 0});  // the move itself sets last_activity = 2000
    EXPECT_EQ(g.closing.size(), 2);
}

TEST(Inactivity, CloseUnloadsAllButStartupAndShowsTheTopMenu) {
    Frame f;
    for (const QString& s : {screen::punte_mnu, screen::punte_menu2, screen::pboek_inlees, screen::sk0_floating})
        f.screens.show(s);
    f.screens.shown.clear();
    f.run.last_activity = 1000;
    f.during_warning = [&] { f.at(1300.6); };  // the five seconds of the warning
    f.at(1295.6);
    f.watcher.tick({7, 7});
    f.watcher.tick({7, 7});
    ASSERT_EQ(f.closing.size(), 1);
    // Dialogs waiting on the user go first: nothing is unloaded under one.
    EXPECT_EQ(f.screens.unloaded, QStringList({"(dialogs closed)", screen::punte_mnu, screen::punte_menu2,
                                               screen::pboek_inlees, screen::sk0_floating}));
    EXPECT_EQ(f.screens.shown, QStringList({screen::punte_mnu}));
    EXPECT_EQ(f.screens.loaded(), QStringList({screen::startup, screen::punte_mnu}));
    EXPECT_FLOAT_EQ(float(f.run.last_activity), 1300.6f);

    // Watching goes on: the next close comes a whole limit later.
    f.during_warning = nullptr;
    f.screens.unloaded.clear();
    f.at(1400);
    f.watcher.tick({7, 7});
    EXPECT_EQ(f.closing.size(), 1);
    EXPECT_TRUE(f.screens.unloaded.isEmpty());
}

TEST(Inactivity, MouseMoveDuringTheWarningPreventsTheClose) {
    Frame f;
    f.screens.show(screen::punte_mnu);
    f.screens.show(screen::punte_menu1);
    f.screens.shown.clear();
    f.run.last_activity = 1000;
    f.during_warning = [&] {
        // Ticks go on while the message counts down.
        f.at(1297);
        f.watcher.tick({3, 3});
        EXPECT_TRUE(f.watcher.warning());
        f.at(1298);
        f.watcher.tick({4, 4});
        f.at(1300.6);
        f.watcher.tick({4, 4});
    };
    f.at(1200);
    f.watcher.tick({3, 3});
    f.at(1295.6);
    f.watcher.tick({3, 3});
    EXPECT_EQ(f.run.last_activity, 1298);
    // One warning only, and no close.
    EXPECT_EQ(f.dialogs.messages.size(), 1);
    EXPECT_EQ(f.closing.size(), 1);
    EXPECT_TRUE(f.screens.unloaded.isEmpty());
    EXPECT_TRUE(f.screens.shown.isEmpty());
}

TEST(Inactivity, CloseFollowsTheWarningWhenTheLimitIsLongPast) {
    Frame f;
    f.screens.show(screen::punte_menu1);
    f.run.last_activity = 100;
    f.at(5000);
    f.watcher.tick({0, 0});
    EXPECT_EQ(f.closing.size(), 1);
    EXPECT_EQ(f.screens.loaded(), QStringList({screen::startup, screen::punte_mnu}));
    EXPECT_EQ(f.run.last_activity, 5000);
}

TEST(Inactivity, SleepsAfterMidnightUntilTheMouseMoves) {
    Frame f;
    f.run.last_activity = 86390;
    f.at(86399);
    f.watcher.tick({0, 0});
    f.at(10);
    f.watcher.tick({0, 0});
    f.at(3600);
    f.watcher.tick({0, 0});
    EXPECT_TRUE(f.closing.isEmpty());
    f.watcher.tick({1, 0});
    EXPECT_EQ(f.run.last_activity, 3600);
}

TEST(ClosingMessage, SplitsTheMessageAtTheDollar) {
    TempDrive t;
    ClosingMessage m(t.run);
    m.load("Voor$Na", "", 3000);
    EXPECT_EQ(m.lblMessage(0), "Voor");
    EXPECT_EQ(m.lblMessage(1), "Na");
    EXPECT_EQ(m.caption(), "VELDO-TALLY");
    EXPECT_EQ(t.run.countdown_ms, 3000);
    EXPECT_FALSE(m.image_visible());
    m.load("Alles in een", "TITEL", 2000, true);
    EXPECT_EQ(m.lblMessage(0), "Alles in een");
    EXPECT_EQ(m.lblMessage(1), "");
    EXPECT_EQ(m.caption(), "TITEL");
    EXPECT_TRUE(m.image_visible());
    m.tmr_label_tick();
    EXPECT_EQ(m.lblMessage(0), "Alles in een");
    EXPECT_EQ(m.lblMessage(1), "");
    EXPECT_EQ(m.lblClose(), "1.9");
}

QStringList count_down(RunState& run, int ticks) {
    ClosingMessage m(run);
    m.load("", "TIME-OUT", 5000);
    QStringList shown;
    for (int i = 0; i < ticks; ++i) {
        m.tmr_label_tick();
        shown << m.lblClose();
    }
    shown << m.lblMessage(0) << m.lblMessage(1) << m.caption();
    return shown;
}

TEST(ClosingMessage, CountsDownInTenthsInEnglish) {
    TempDrive t;
    const QStringList shown = count_down(t.run, 50);
    EXPECT_EQ(shown.mid(0, 11), QStringList({"4.9", "4.8", "4.7", "4.6", "4.5", "4.4", "4.3", "4.2", "4.1", "4", "3.9"}));
    EXPECT_EQ(shown.mid(37, 5), QStringList({"1.2", "1.1", "1", "0.9", ""}));
    // Below a second the label stays empty until the window closes.
    EXPECT_EQ(shown.mid(41, 9), QStringList(9, QString()));
    EXPECT_EQ(t.run.countdown_ms, 900);
    EXPECT_EQ(shown.mid(50), QStringList({"System closing down in ", " seconds !", "TIME-OUT"}));
}

TEST(ClosingMessage, CountsDownInAfrikaans) {
    TempDrive t;
    t.run.language_afrikaans = true;
    const QStringList shown = count_down(t.run, 2);
    EXPECT_EQ(shown, QStringList({"4.9", "4.8", "Stelsel sluit oor ", " sekondes !", "TIME-OUT"}));
}

TEST(ClosingMessage, ABlankMessageGetsTheDefaultTexts) {
    TempDrive t;
    ClosingMessage m(t.run);
    m.load("   $ agter", "", 1000);
    m.tmr_label_tick();
    EXPECT_EQ(m.lblMessage(0), "System closing down in ");
    EXPECT_EQ(m.lblMessage(1), " seconds !");
    EXPECT_EQ(m.lblClose(), "0.9");
    m.tmr_label_tick();
    EXPECT_EQ(m.lblClose(), "");
}

// The TIME-OUT button, reply by reply: the limit kept (a single), the file
// beside the program as the print statement writes it, the message, and
// what the start reads back from the same file.
TEST(TimeOut, TheButtonSetsTheLimitWritesItAndReadsItBack) {
    struct Row {
        const char* reply;      // nullptr: the default is accepted
        float seconds;          // the limit afterwards
        const char* file;       // time_out.txt afterwards; nullptr: not written
        const char* minutes;    // as the message shows them
        bool beep;
        const char* why;
    } rows[] = {
        {"10", 600, " 600 \r\n", "10", false, "minutes to seconds"},
        {"2.5", 150, " 150 \r\n", "2.5", false, "a fraction of a minute"},
        {nullptr, 300, " 300 \r\n", "5", false, "the default rewrites the same limit"},
        {"", 300, nullptr, "5", false, "a blank reply keeps the limit but still tells"},
        {"nooit", 0, " 0 \r\n", "0", false, "no number switches the watcher off"},
        {"0.01", 0.6f, " 0.6 \r\n", "0.01", false, "a single keeps the fraction of a second"},
        {"-1", 300, nullptr, "5", true, "a negative limit is refused with a beep"},
        {"-0.5", 300, nullptr, "5", true, "so is any negative reply"},
        {"99999999", 9999999, " 9999999 \r\n", "166666.7", false, "no more digits than a single holds"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.why);
        Frame f;
        f.run.language_afrikaans = false;
        if (r.reply) f.dialogs.inputs << r.reply;
        change_timeout(f.ctx);
        EXPECT_EQ(f.dialogs.prompts, QStringList({"TIME OUT IN MINUTES"}));
        EXPECT_EQ(f.run.timeout_seconds, r.seconds);
        const QString file = f.program + "/time_out.txt";
        if (r.file) {
            EXPECT_EQ(read_bytes(file), QByteArray(r.file));
            EXPECT_EQ(read_timeout_seconds(f.program), r.seconds);
        } else {
            EXPECT_FALSE(QFileInfo::exists(file));
        }
        EXPECT_EQ(f.dialogs.beeps, r.beep ? 1 : 0);
        ASSERT_EQ(f.dialogs.messages.size(), 1);
        EXPECT_EQ(f.dialogs.messages[0].text, QString("TIME DURATION CHANGED TO %1 MINUTES ...").arg(r.minutes));
        EXPECT_EQ(f.dialogs.messages[0].icon, MsgIcon::Information);
    }
    Frame af;
    af.run.language_afrikaans = true;
    af.dialogs.inputs << "2.5";
    change_timeout(af.ctx);
    EXPECT_EQ(af.dialogs.prompts, QStringList({"TYDSDUUR IN MINUTE"}));
    EXPECT_EQ(af.dialogs.texts(), QStringList({"TYDSDUUR VERANDER NA 2.5 MINUTE ..."}));
}

// A negative limit in the file, written by an older version or by hand,
// counts as the default instead of locking the workstation.
TEST(TimeOut, ANegativeLimitInTheFileIsTheDefault) {
    Frame f;
    testing::write_bytes(f.program + "/time_out.txt", "-60 \r\n");
    EXPECT_EQ(read_timeout_seconds(f.program), 300);
    testing::write_bytes(f.program + "/time_out.txt", " 0.6 \r\n");
    EXPECT_EQ(read_timeout_seconds(f.program), 0.6f);
}

}  // namespace
}  // namespace veldo
