#include "shell/floating_menu.h"

#include <QFileInfo>

#include "store/run_state.h"
#include "util/file_lookup.h"
#include "util/user_dialogs.h"

namespace veldo {

FloatingMenu::FloatingMenu(ShellContext& context) : ctx_(context) {}

const QList<FloatingMenu::Button>& FloatingMenu::buttons() {
    // Indices 0, 1, 8 and 9 are programs that are not started from here.
    static const QList<Button> all = {
        {0, QStringLiteral("VELDO-CLERK")},     {1, QStringLiteral("VELDO-KINDREDS")},
        {2, QStringLiteral("VELDO-PURSE")},     {3, QStringLiteral("VELDO-SHELF")},
        {4, QStringLiteral("VELDO-CREWS")},     {5, QStringLiteral("VELDO-DIARY")},
        {6, QStringLiteral("VELDO-SHIFT")},     {7, QStringLiteral("VELDO-SCROL")},
        {8, QStringLiteral("VELDO-TOMES")},     {9, QStringLiteral("VELDO-PLANS")},
        {10, QStringLiteral("VELDO-CONDUCTOR")}, {11, QStringLiteral("VELDO-VIEWER")},
        {12, QStringLiteral("VELDO-TALLY")},    {13, QStringLiteral("VELDO-VAULTS")},
        {14, QStringLiteral("VELDO-CAMPUS")},
    };
    return all;
}

const QList<FloatingMenu::Launcher>& FloatingMenu::launchers() {
    // Index 12 is this program; a second copy refuses to start by itself.
    static const QList<Launcher> table = {
        {2, QStringLiteral("VELDO-PURSE"), QStringLiteral("/VELDO-PURSE/VELDO-PURSE.EXE")},
        {3, QStringLiteral("VELDO-SHELF"), QStringLiteral("/VELDO-SHELF/VELDO-SHELF.EXE")},
        {4, QStringLiteral("VELDO-CREWS"), QStringLiteral("/VELDO-CREWS/VELDO-CREWS.EXE")},
        {5, QStringLiteral("VELDO-DIARY"), QStringLiteral("/VELDO-DIARY/VELDO-DIARY.EXE")},
        {6, QStringLiteral("VELDO-SHIFT"), QStringLiteral("/VELDO-SHIFT/VELDO-SHIFT.EXE")},
        {7, QStringLiteral("VELDO-SCROL"), QStringLiteral("/VELDO-SCROL/VELDO-SCROL.EXE")},
        {10, QStringLiteral("VELDO-CONDUCTOR"), QStringLiteral("/VELDO-HOUSE/VELDO-CONDUCTOR.EXE")},
        {11, QStringLiteral("VELDO-VIEWER"), QStringLiteral("/VELDO-VIEWER/VELDO-VIEWER.EXE")},
        {12, QStringLiteral("VELDO-TALLY"), QStringLiteral("/VELDO-TALLY/VELDO-TALLY.EXE")},
        {13, QStringLiteral("VELDO-VAULTS"), QStringLiteral("/VELDO-VAULTS/VELDO-VAULTS.EXE")},
        {14, QStringLiteral("VELDO-CAMPUS"), QStringLiteral("/VELDO-HOUSE/VELDO-CAMPUS.EXE")},
    };
    return table;
}

void FloatingMenu::load() {
    environment_text_.clear();
    for (const QString& entry : ctx_.screens.process_environment())
        environment_text_ += entry + QLatin1Char('\n');
}

QString FloatingMenu::installed_program(const QString& path) const {
    const QString relative = path.mid(1);
    QString found = find_ignoring_case(ctx_.run.root_folder, relative);
    // The family's programs carry no ".EXE" on this platform.
    if (found.isEmpty() && relative.endsWith(QLatin1String(".EXE"), Qt::CaseInsensitive))
        found = find_ignoring_case(ctx_.run.root_folder, relative.chopped(4));
    if (found.isEmpty() || !QFileInfo(found).isFile()) return QString();
    return found;
}

void FloatingMenu::sk0f_menu_click(int index) {
    for (const Launcher& launcher : launchers()) {
        if (launcher.index != index) continue;
        const QString program = installed_program(launcher.path);
        if (!program.isEmpty()) {
            // The new process runs on its own; this window stays open.
            ctx_.screens.start_process(program);
        } else {
            ctx_.dialogs.message(
                ctx_.run.tr(QStringLiteral("Installeer asb '%1' (sien %2)"),
                            QStringLiteral("Please install '%1' (see %2)"))
                    .arg(launcher.program, kMakerWebAddress),
                MsgIcon::Critical);
        }
        return;
    }
}

void FloatingMenu::sk0f_exit() { ctx_.screens.unload(screen::sk0_floating); }

}  // namespace veldo
