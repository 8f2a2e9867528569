#include <QApplication>
#include <QCoreApplication>
#include <QGuiApplication>
#include <string_view>
#include <QDir>
#include <QLockFile>
#include <QStandardPaths>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>
#include <memory>

#include "app/cli.h"
#include "gui/desktop.h"
#include "util/user_dialogs.h"

namespace {

// The desktop's application: a handler that ends the program (a vanished
// drive, a read-only data set) ends the event loop with its code instead of
// unwinding through Qt.
class DesktopApplication : public QApplication {
public:
    using QApplication::QApplication;
    bool notify(QObject* receiver, QEvent* event) override {
        try {
            return QApplication::notify(receiver, event);
        } catch (const veldo::ProgramEnd& end) {
            QCoreApplication::exit(end.exit_code);
            return true;
        }
    }
};

// The desktop program: the frame, the splash, the menus.
int run_desktop(int argc, char** argv) {
    DesktopApplication app(argc, argv);
    QApplication::setApplicationName("VELDO-TALLY");
    // One copy per user: a second one shows the splash's message and ends.
    QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (runtime.isEmpty()) runtime = QDir::tempPath();
    QLockFile lock(QDir(runtime).filePath("veldo-tally.lock"));
    lock.setStaleLockTime(0);
    const bool first_copy = lock.tryLock(0);
    veldo::Desktop desktop(QCoreApplication::applicationDirPath(), [first_copy] { return !first_copy; });
    try {
        if (!desktop.start() || desktop.ended()) return 0;
    } catch (const veldo::ProgramEnd& end) {
        return end.exit_code;
    }
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc <= 1) return run_desktop(argc, argv);
    if (std::string_view(argv[1]) == "print") {
        // Prints measure and draw text: that needs the GUI library, never a
        // display.
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        // Without a desktop session there is no runtime folder; make the one
        // Qt would fall back to, so that it need not warn about it.
        if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
            const QByteArray runtime = QDir::tempPath().toLocal8Bit() + "/runtime-" + QByteArray::number(getuid());
            ::mkdir(runtime.constData(), 0700);
            struct stat st {};
            if (::stat(runtime.constData(), &st) == 0 && st.st_uid == getuid() && (st.st_mode & 0777) == 0700)
                qputenv("XDG_RUNTIME_DIR", runtime);
        }
        QGuiApplication app(argc, argv);
        QStringList arguments = QCoreApplication::arguments();
        arguments.removeFirst();
        return veldo::run_command_line(arguments, QCoreApplication::applicationDirPath());
    }
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("VELDO-TALLY");
    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();
    return veldo::run_command_line(arguments, QCoreApplication::applicationDirPath());
}
