#include "shell/splash.h"

#include <QSysInfo>

#include "shell/screens.h"
#include "shell/startup.h"
#include "store/record_store.h"

namespace veldo {

QString second_copy_message(bool afrikaans) {
    return afrikaans ? "VELDO-TALLY stelsel reeds gelaai - sien 'TASK BAR' ..."
                     : "VELDO-TALLY system already loaded - see TASK BAR ...";
}

void MainFrame::load(const QString& application_folder) {
    ctx_.run.timeout_seconds = read_timeout_seconds(application_folder);
    ctx_.run.last_activity = ctx_.clock.seconds();
    ctx_.run.os_product_name = QSysInfo::prettyProductName().trimmed();
}

bool MainFrame::query_unload() {
    ctx_.screens.show(screen::punte_mnu);
    return true;
}

Splash::Splash(ShellContext& ctx, QString application_folder, std::function<bool()> another_copy_running,
               std::function<double()> random_unit)
    : ctx_(ctx),
      application_folder_(std::move(application_folder)),
      another_copy_running_(std::move(another_copy_running)),
      random_unit_(std::move(random_unit)) {}

bool Splash::load() {
    const int index = int(random_unit_() * 7 + 1);
    skin_colour_ = kSplashColours[std::clamp(index, 1, 7) - 1];
    if (another_copy_running_ && another_copy_running_()) {
        // The language is still the default here: the English text shows.
        ctx_.dialogs.message(second_copy_message(ctx_.run.language_afrikaans), MsgIcon::Critical);
        ctx_.screens.end_program();
        return false;
    }
    ctx_.run.today = ctx_.clock.today();
    run_startup(ctx_.run, ctx_.store, application_folder_);
    lblVersion = "Version " + program_version();
    lblProductName = kProgramName;
    chk_lang[1] = ctx_.run.language_afrikaans;
    chk_lang[2] = !ctx_.run.language_afrikaans;
    timer_enabled = true;
    return true;
}

void Splash::leave() {
    if (done_) return;
    done_ = true;
    timer_enabled = false;
    save_setup_language(ctx_.run);
    ctx_.screens.unload(screen::marks_splash);
    ctx_.screens.show(screen::punte_mnu);
}

void Splash::timer1_timer() {
    if (done_) return;
    read_setup_language(ctx_.run);
    leave();
}

void Splash::chk_lang_click(int index) {
    if (done_) return;
    ctx_.run.language_afrikaans = index == 1;
    chk_lang[1] = index == 1;
    chk_lang[2] = index != 1;
    leave();
}

}  // namespace veldo
