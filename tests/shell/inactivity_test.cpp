// The inactivity watcher, the timed closing message and the time-out button,
// on a fake clock: no test waits.
#include <gtest/gtest.h>

#include <optional>
#include <utility>

#include "shell/inactivity.h"
#include "shell/startup.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

using testing::transcript;

struct Tick {
    double seconds;
    std::optional<QPoint> mouse;  // none: the clock moves only
};

// A frame with a fake clock and mouse. Each tick, warning and closing
// message goes into a log, one line each, with what it changed.
struct Frame : testing::ShellFixture {
    int now_ms = 0;
    QStringList log;
    QList<Tick> during_warning;  // ticks while the first warning is up
    InactivityWatcher watcher{ctx, [this](const QString& m, const QString& t, int d) {
                                  log << QString("  warning: box '%1', then '%2|%3|%4'")
                                             .arg(dialogs.messages.last().text, m, t)
                                             .arg(d);
                                  for (const Tick& t : std::exchange(during_warning, {})) tick(t);
                              }};

    explicit Frame(float limit = 300, double last_activity = 1000) {
        ctx.clock.now = [this] { return QTime(0, 0).addMSecs(now_ms); };
        run.timeout_seconds = limit;
        run.last_activity = last_activity;
    }
    // A tick without a mouse position only moves the clock. Its line comes
    // before what it set off.
    void tick(const Tick& t) {
        now_ms = int(t.seconds * 1000.0 + 0.5);
        const qsizetype line = log.size(), unloaded = screens.unloaded.size();
        if (t.mouse) watcher.tick(*t.mouse);
        log.insert(line, QString("%1 %2: last %3%4%5")
                             .arg(t.seconds)
                             .arg(t.mouse ? QString("(%1,%2)").arg(t.mouse->x()).arg(t.mouse->y()) : "clock")
                             .arg(run.last_activity, 0, 'g', 9)
                             .arg(watcher.warning() ? ", warning up" : "")
                             .arg(screens.unloaded.size() > unloaded ? ", screens closed" : ""));
    }
};

// Sessions of ticks on a frame showing three screens and the floating menu:
// the log of ticks, warnings and closes, then what the user saw.
TEST(Inactivity, WatchesTheMouseWarnsAndCloses) {
    using P = QPoint;
    const struct {
        const char* why;
        float limit;
        double last_activity;
        QList<Tick> ticks, during_warning;
    } rows[] = {
        {"a mouse move after the first tick is activity", 300, 1000,
         {{1001, P(10, 10)}, {1002, P(10, 10)}, {1003.5, P(10, 11)}, {1004, P(11, 11)}}, {}},
        {"the warning comes five seconds before the limit, not at it; no close while the clock stands", 300, 1000,
         {{1295, P(1, 1)}, {1295, P(1, 1)}, {1295.1, P(1, 1)}}, {}},
        {"a limit of five warns after any time", 5, 1000, {{1000, P(0, 0)}, {1000.1, P(0, 0)}}, {}},
        {"below five even with none gone by: the move itself sets the time", 3, 0,
         {{2000, P(0, 0)}, {2000, P(1, 0)}}, {}},
        {"after the warning's five seconds dialogs close first, all but startup unload and the top menu shows; "
         "the next close comes a whole limit later",
         300, 1000, {{1295.6, P(7, 7)}, {1400, P(7, 7)}}, {{1300.6, {}}}},
        {"long past the limit the close follows the warning at once", 300, 100, {{5000, P(0, 0)}}, {}},
        {"a mouse move during the warning prevents the close; one warning only", 300, 1000,
         {{1200, P(3, 3)}, {1295.6, P(3, 3)}}, {{1297, P(3, 3)}, {1298, P(4, 4)}, {1300.6, P(4, 4)}}},
        {"after midnight the watcher sleeps until the mouse moves", 300, 86390,
         {{86399, P(0, 0)}, {10, P(0, 0)}, {3600, P(0, 0)}, {3600, P(1, 0)}}, {}},
        {"a zero limit never warns or closes", 0, 1000, {{1001, P(5, 5)}, {86000, P(5, 5)}}, {}},
    };
    QString outcome;
    for (const auto& r : rows) {
        Frame f(r.limit, r.last_activity);
        for (const QString& s : {screen::punte_mnu, screen::punte_menu2, screen::pboek_inlees, screen::sk0_floating})
            f.screens.show(s);
        f.screens.shown.clear();
        f.during_warning = r.during_warning;
        for (const Tick& t : r.ticks) f.tick(t);
        outcome += QString("== %1\n%2\n").arg(r.why, f.log.join('\n')) + transcript(f, f.screens) +
                   "loaded: " + f.screens.loaded().join(" | ") + '\n';
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/inactivity_sessions.txt"));
}

// The labels after each tick, the two texts, the caption, whether the image
// shows and the time left. Below a second the label stays empty until the
// window closes; a blank message gets the default texts too.
TEST(ClosingMessage, SplitsTheMessageAtTheDollarAndCountsDownInTenths) {
    const struct {
        const char *message, *title;
        int duration_ms, ticks;
        bool image = false, afrikaans = false;
    } rows[] = {{"Voor$Na", "", 3000, 0},           {"Alles in een", "TITEL", 2000, 1, true},
                {"", "TIME-OUT", 5000, 50},         {"   $ agter", "TIME-OUT", 1000, 2},
                {"", "TIME-OUT", 5000, 2, false, true}};
    QString outcome;
    for (const auto& r : rows) {
        testing::TempDrive t;
        t.run.language_afrikaans = r.afrikaans;
        ClosingMessage m(t.run);
        m.load(r.message, r.title, r.duration_ms, r.image);
        QStringList labels;
        for (int i = 0; i < r.ticks; ++i) {
            m.tmr_label_tick();
            labels << m.lblClose();
        }
        outcome += QString("'%1' %2 ms, %3 ticks: [%4] '%5' '%6' '%7', image %8, left %9 ms\n")
                       .arg(r.message)
                       .arg(r.duration_ms)
                       .arg(r.ticks)
                       .arg(labels.join('|'), m.lblMessage(0), m.lblMessage(1), m.caption())
                       .arg(m.image_visible())
                       .arg(t.run.countdown_ms);
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/closing_countdown.txt"));
}

// The TIME-OUT button, reply by reply: the prompt, the limit kept (a
// single), the file beside the program as the print statement writes it,
// what the start reads back from it, and the message with the minutes.
TEST(TimeOut, TheButtonSetsTheLimitWritesItAndReadsItBack) {
    const struct {
        const char* reply;  // nullptr: the default is accepted
        bool afrikaans;
        const char* why;
    } rows[] = {
        {"10", false, "minutes to seconds"},
        {"2.5", false, "a fraction of a minute"},
        {"2.5", true, "in Afrikaans"},
        {nullptr, false, "the default rewrites the same limit"},
        {"", false, "a blank reply keeps the limit but still tells"},
        {"nooit", false, "no number switches the watcher off"},
        {"0.01", false, "a single keeps the fraction of a second"},
        {"-1", false, "a negative limit is refused with a beep"},
        {"-0.5", false, "so is any negative reply"},
        {"99999999", false, "no more digits than a single holds"},
    };
    QString outcome;
    for (const auto& r : rows) {
        Frame f;
        f.run.language_afrikaans = r.afrikaans;
        if (r.reply) f.dialogs.inputs << r.reply;
        change_timeout(f.ctx);
        const float read_back = read_timeout_seconds(f.run.program_folder);
        outcome += QString("== %1\nlimit %2, read back %3\n")
                       .arg(r.why, QString::number(f.run.timeout_seconds, 'g', 9), QString::number(read_back, 'g', 9)) +
                   transcript(f, f.screens, {"Apps"});
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/time_out_button.txt"));
}

}  // namespace
}  // namespace veldo
