#include "shell/inactivity.h"

#include <QDir>
#include <algorithm>
#include <cmath>

#include "shell/screens.h"
#include "shell/startup.h"
#include "store/run_state.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/safe_file.h"
#include "util/user_dialogs.h"

namespace veldo {
namespace {

// Singles print with seven significant digits.
constexpr int kSingleDigits = 7;
constexpr double kLargestLimit = 9999999.0;

QString minutes_text(float seconds) { return plain_number_text(double(seconds / 60.0f), kSingleDigits); }

}  // namespace

void reset_activity(RunState& run, const Clock& clock) { run.last_activity = clock.seconds(); }

InactivityWatcher::InactivityWatcher(ShellContext& ctx, ShowClosingMessage show_closing_message)
    : ctx_(ctx), show_closing_message_(std::move(show_closing_message)) {}

void InactivityWatcher::tick(QPoint mouse) {
    RunState& run = ctx_.run;
    if (!seen_mouse_) {
        seen_mouse_ = true;
    } else if (mouse != mouse_) {
        run.last_activity = ctx_.clock.seconds();
    }
    mouse_ = mouse;

    if (run.timeout_seconds == 0) return;
    // Ticks keep coming while the warning is up; they only watch the mouse.
    // A second warning would wait on the first one for ever.
    if (warning_) return;

    const float limit = float(run.timeout_seconds);
    const float now = ctx_.clock.seconds();
    if (limit - 5.0f + float(run.last_activity) < now) {
        warning_ = true;
        ctx_.dialogs.message(QStringLiteral("1"), MsgIcon::None, MsgButtons::Ok);
        if (show_closing_message_) show_closing_message_(QString(), QStringLiteral("TIME-OUT"), kWarningMs);
        warning_ = false;
    }

    // The clock is read afresh: the warning took its five seconds, and a
    // mouse move during it has moved last_activity on.
    if (limit + float(run.last_activity) < ctx_.clock.seconds()) {
        ctx_.screens.close_dialogs();
        const QStringList open = ctx_.screens.loaded();
        for (const QString& name : open)
            if (name != screen::startup) ctx_.screens.unload(name);
        ctx_.screens.show(screen::punte_mnu);
        run.last_activity = ctx_.clock.seconds();
    }
}

ClosingMessage::ClosingMessage(RunState& run) : run_(run) {}

void ClosingMessage::load(const QString& message, const QString& title, int duration_ms, bool keep_image) {
    caption_ = title.isEmpty() ? kProgramName : title;
    const qsizetype dollar = message.indexOf(QLatin1Char('$'));
    if (dollar < 0) {
        message0_ = message;
        message1_.clear();
    } else {
        message0_ = message.left(dollar);
        message1_ = message.mid(dollar + 1);
    }
    close_.clear();
    duration_ms_ = duration_ms;
    run_.countdown_ms = duration_ms;
    image_visible_ = keep_image;
}

void ClosingMessage::tmr_label_tick() {
    if (message0_.trimmed().isEmpty()) {
        message0_ = run_.tr("Stelsel sluit oor ", "System closing down in ");
        message1_ = run_.tr(" sekondes !", " seconds !");
    }
    close_.clear();
    if (run_.countdown_ms >= 1000) {
        run_.countdown_ms -= kLabelIntervalMs;
        close_ = plain_number_text(double(run_.countdown_ms) / 1000.0);
    }
}

void change_timeout(ShellContext& ctx) {
    RunState& run = ctx.run;
    const QString reply = ctx.dialogs.input(run.tr("TYDSDUUR IN MINUTE", "TIME OUT IN MINUTES"), QString(),
                                            minutes_text(run.timeout_seconds));
    // Worked out in double, as Val gives it, and kept as a single.
    const double seconds = Val(reply) * 60.0;
    if (seconds < 0) {
        // A negative limit would bring the warning back without end: refused,
        // and the old limit stays.
        ctx.dialogs.beep();
    } else if (!reply.trimmed().isEmpty()) {
        // No more digits than a single prints in full, so the file reads
        // back the same.
        run.timeout_seconds = std::isnan(seconds) ? 0.0f : float(std::min(seconds, kLargestLimit));
        const QString folder = run.program_folder.trimmed().isEmpty() ? QDir::currentPath() : run.program_folder;
        // As the print statement writes a number: a blank for the sign before
        // it and one blank after it.
        const QByteArray line = number_text(run.timeout_seconds, kSingleDigits).toLatin1() + " \r\n";
        write_file_atomic(path_ignoring_case(folder, kTimeOutFileName), line);
    }
    const QString minutes = minutes_text(run.timeout_seconds);
    ctx.dialogs.message(run.tr("TYDSDUUR VERANDER NA " + minutes + " MINUTE ...",
                               "TIME DURATION CHANGED TO " + minutes + " MINUTES ..."),
                        MsgIcon::Information);
}

}  // namespace veldo
