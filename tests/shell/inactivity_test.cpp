// The inactivity watcher, the timed closing message and the time-out button,
// on a fake clock: no test waits.
#include <gtest/gtest.h>

#include "shell/inactivity.h"
#include "shell/startup.h"
#include "tests/support/shell_fixture.h"

namespace veldo {
namespace {

using testing::read_bytes;
using testing::TempDrive;

// A frame with a fake clock and mouse, and a record of closing messages.
struct Frame : testing::ShellFixture {
    QString program = run.program_folder;
    int now_ms = 0;
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
        ctx.clock.now = [this] { return QTime(0, 0).addMSecs(now_ms); };
        run.timeout_seconds = 300;
    }
    void at(double seconds) { now_ms = int(seconds * 1000.0 + 0.5); }
    void tick(double seconds, QPoint mouse) {
        at(seconds);
        watcher.tick(mouse);
    }
    void show(const QStringList& names) {
        for (const QString& s : names) screens.show(s);
        screens.shown.clear();
    }
};

TEST(Inactivity, AMouseMoveAfterTheFirstTickOrAKeyIsActivity) {
    Frame f;
    f.run.last_activity = 1000;
    const struct {
        double at;
        QPoint mouse;
        double last;
    } ticks[] = {{1001, {10, 10}, 1000}, {1002, {10, 10}, 1000}, {1003.5, {10, 11}, 1003.5}, {1004, {11, 11}, 1004}};
    for (const auto& t : ticks) {
        f.tick(t.at, t.mouse);
        EXPECT_EQ(f.run.last_activity, t.last) << t.at;
    }
    EXPECT_TRUE(f.dialogs.messages.isEmpty());
    f.at(43201.5);
    reset_activity(f.run, f.ctx.clock);
    EXPECT_EQ(f.run.last_activity, 43201.5);
}

TEST(Inactivity, ZeroLimitNeverWarnsOrCloses) {
    Frame f;
    f.run.timeout_seconds = 0;
    f.show({screen::punte_mnu, screen::punte_menu1});
    for (int s = 1; s < 86400; s += 997) f.tick(s, {5, 5});
    EXPECT_TRUE(f.dialogs.messages.isEmpty());
    EXPECT_TRUE(f.closing.isEmpty());
    EXPECT_TRUE(f.screens.unloaded.isEmpty());
}

TEST(Inactivity, WarnsFiveSecondsBeforeTheLimit) {
    Frame f;
    f.run.last_activity = 1000;
    f.tick(1295, {1, 1});  // 300 - 5 + 1000 is not less than 1295
    f.watcher.tick({1, 1});
    EXPECT_TRUE(f.dialogs.messages.isEmpty());
    f.tick(1295.1, {1, 1});
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

    // A limit of five warns after any time; below five even with none gone by.
    Frame five;
    five.run.timeout_seconds = 5;
    five.run.last_activity = 1000;
    five.tick(1000, {0, 0});
    EXPECT_TRUE(five.closing.isEmpty());
    five.tick(1000.1, {0, 0});
    EXPECT_EQ(five.closing.size(), 1);
    Frame three;
    three.run.timeout_seconds = 3;
    three.tick(2000, {0, 0});
    three.watcher.tick({1, 0});  // the move itself sets last_activity = 2000
    EXPECT_EQ(three.closing.size(), 2);
}

TEST(Inactivity, CloseUnloadsAllButStartupAndShowsTheTopMenu) {
    Frame f;
    f.show({screen::punte_mnu, screen::punte_menu2, screen::pboek_inlees, screen::sk0_floating});
    f.run.last_activity = 1000;
    f.during_warning = [&] { f.at(1300.6); };  // the five seconds of the warning
    f.tick(1295.6, {7, 7});
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
    f.tick(1400, {7, 7});
    EXPECT_EQ(f.closing.size(), 1);
    EXPECT_TRUE(f.screens.unloaded.isEmpty());

    // Long past the limit the close follows the warning at once.
    Frame late;
    late.show({screen::punte_menu1});
    late.run.last_activity = 100;
    late.tick(5000, {0, 0});
    EXPECT_EQ(late.closing.size(), 1);
    EXPECT_EQ(late.screens.loaded(), QStringList({screen::startup, screen::punte_mnu}));
    EXPECT_EQ(late.run.last_activity, 5000);
}

TEST(Inactivity, MouseMoveDuringTheWarningPreventsTheClose) {
    Frame f;
    f.show({screen::punte_mnu, screen::punte_menu1});
    f.run.last_activity = 1000;
    f.during_warning = [&] {
        // Ticks go on while the message counts down.
        f.tick(1297, {3, 3});
        EXPECT_TRUE(f.watcher.warning());
        f.tick(1298, {4, 4});
        f.tick(1300.6, {4, 4});
    };
    f.tick(1200, {3, 3});
    f.tick(1295.6, {3, 3});
    EXPECT_EQ(f.run.last_activity, 1298);
    // One warning only, and no close.
    EXPECT_EQ(f.dialogs.messages.size(), 1);
    EXPECT_EQ(f.closing.size(), 1);
    EXPECT_TRUE(f.screens.unloaded.isEmpty());
    EXPECT_TRUE(f.screens.shown.isEmpty());
}

TEST(Inactivity, SleepsAfterMidnightUntilTheMouseMoves) {
    Frame f;
    f.run.last_activity = 86390;
    for (double s : {86399, 10, 3600}) f.tick(s, {0, 0});
    EXPECT_TRUE(f.closing.isEmpty());
    f.watcher.tick({1, 0});
    EXPECT_EQ(f.run.last_activity, 3600);
}

TEST(ClosingMessage, SplitsTheMessageAtTheDollar) {
    TempDrive t;
    ClosingMessage m(t.run);
    m.load("Voor$Na", "", 3000);
    EXPECT_EQ(QStringList({m.lblMessage(0), m.lblMessage(1), m.caption()}), QStringList({"Voor", "Na", "VELDO-TALLY"}));
    EXPECT_EQ(t.run.countdown_ms, 3000);
    EXPECT_FALSE(m.image_visible());
    m.load("Alles in een", "TITEL", 2000, true);
    EXPECT_EQ(QStringList({m.lblMessage(0), m.lblMessage(1), m.caption()}), QStringList({"Alles in een", "", "TITEL"}));
    EXPECT_TRUE(m.image_visible());
    m.tmr_label_tick();
    EXPECT_EQ(QStringList({m.lblMessage(0), m.lblMessage(1), m.lblClose()}), QStringList({"Alles in een", "", "1.9"}));
}

// The labels after each of `ticks` ticks of a five-second count, then the
// two texts and the caption.
QStringList count_down(RunState& run, int ticks, const QString& message = "", int duration_ms = 5000) {
    ClosingMessage m(run);
    m.load(message, "TIME-OUT", duration_ms);
    QStringList shown;
    for (int i = 0; i < ticks; ++i) {
        m.tmr_label_tick();
        shown << m.lblClose();
    }
    return shown << m.lblMessage(0) << m.lblMessage(1) << m.caption();
}

TEST(ClosingMessage, CountsDownInTenthsInEitherLanguage) {
    TempDrive t;
    const QStringList shown = count_down(t.run, 50);
    EXPECT_EQ(shown.mid(0, 11), QStringList({"4.9", "4.8", "4.7", "4.6", "4.5", "4.4", "4.3", "4.2", "4.1", "4", "3.9"}));
    EXPECT_EQ(shown.mid(37, 5), QStringList({"1.2", "1.1", "1", "0.9", ""}));
    // Below a second the label stays empty until the window closes.
    EXPECT_EQ(shown.mid(41, 9), QStringList(9, QString()));
    EXPECT_EQ(t.run.countdown_ms, 900);
    EXPECT_EQ(shown.mid(50), QStringList({"System closing down in ", " seconds !", "TIME-OUT"}));
    // A blank message gets the default texts too.
    EXPECT_EQ(count_down(t.run, 2, "   $ agter", 1000),
              QStringList({"0.9", "", "System closing down in ", " seconds !", "TIME-OUT"}));
    t.run.language_afrikaans = true;
    EXPECT_EQ(count_down(t.run, 2), QStringList({"4.9", "4.8", "Stelsel sluit oor ", " sekondes !", "TIME-OUT"}));
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

}  // namespace
}  // namespace veldo
