#pragma once
// The inactivity time-out. School computers stand in shared rooms: when the
// mouse has not moved for `timeout_seconds`, the frame warns for five
// seconds, then unloads every screen and shows the top menu again. The
// program itself goes on running.
//
// Times are seconds since midnight as 32-bit floats, summed as such, the way
// the family's timer counts; midnight is not treated, so just after it
// `last_activity` lies in the future and the watcher sleeps until the mouse
// moves. The clock and the mouse come in from outside so tests need no wait.

#include <QPoint>
#include <QString>
#include <functional>

namespace veldo {

struct Clock;
struct RunState;
struct ShellContext;

inline const QString kTimeOutFileName = QStringLiteral("time_out.txt");

// Activity by keyboard: the key-press handlers of most screens call this.
void reset_activity(RunState& run, const Clock& clock);

// The watcher behind the frame's 100 ms timer `tmrCheckMouse`.
class InactivityWatcher {
public:
    // Shows the timed message window (frmMessage) and returns when it has
    // closed; the frame lets events run meanwhile, so ticks go on.
    using ShowClosingMessage = std::function<void(const QString& message, const QString& title, int duration_ms)>;

    InactivityWatcher(ShellContext& ctx, ShowClosingMessage show_closing_message);

    static constexpr int kIntervalMs = 100;
    static constexpr int kWarningMs = 5000;

    // One tick with the mouse's screen position.
    void tick(QPoint mouse);

    // True while a warning is up (from the box "1" to the end of the timed
    // message).
    bool warning() const { return warning_; }

private:
    ShellContext& ctx_;
    ShowClosingMessage show_closing_message_;
    bool seen_mouse_ = false;
    QPoint mouse_;
    bool warning_ = false;
};

// The logic of frmMessage, the small timed message window: the text before
// and after the number, the caption, the count in lblClose. The widget runs
// the timers and shows what this holds.
class ClosingMessage {
public:
    explicit ClosingMessage(RunState& run);

    static constexpr int kLabelIntervalMs = 100;  // tmrLabel

    // A "$" in `message` splits it over lblMessage(0) and lblMessage(1). An
    // empty title gives the program's title. Sets countdown_ms to the
    // duration.
    void load(const QString& message, const QString& title, int duration_ms, bool keep_image = false);
    // tmrLabel: fills in the default texts when lblMessage(0) is blank and
    // counts countdown_ms down in tenths of a second while it is 1,000 or
    // more; below that lblClose stays empty.
    void tmr_label_tick();

    QString caption() const { return caption_; }
    QString lblMessage(int index) const { return index == 0 ? message0_ : message1_; }
    QString lblClose() const { return close_; }
    bool image_visible() const { return image_visible_; }
    int duration_ms() const { return duration_ms_; }

private:
    RunState& run_;
    QString caption_, message0_, message1_, close_;
    bool image_visible_ = false;
    int duration_ms_ = 0;
};

// The `timeout` button of the top menu: asks the limit in minutes, keeps it
// in run.timeout_seconds and `time_out.txt` in the program folder, and says
// what the limit now is. A reply that is no number gives 0, which switches
// the watcher off; a blank or cancelled reply keeps the limit. A file that
// can't be written leaves the new limit for this run only.
void change_timeout(ShellContext& ctx);

}  // namespace veldo
