#pragma once
// Runs the built program with a temporary drive root, as a user would from a
// shell.

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <unistd.h>

namespace veldo::testing {

struct ProgramResult {
    int exit_code = -1;
    QString out;
    QString err;
};

// The program's environment: the temporary drive root and no display.
inline QProcessEnvironment program_environment(const QString& drive_root) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("KESTRALIN_DRIVE", drive_root);
    env.insert("QT_QPA_PLATFORM", "offscreen");
    return env;
}

// With `unprivileged`, a run as root drops to the nobody account first, so
// that file permissions hold as they do for a teacher.
inline ProgramResult run_program(const QString& drive_root, const QStringList& arguments,
                                 bool unprivileged = false) {
    QProcess p;
    p.setProcessEnvironment(program_environment(drive_root));
    if (unprivileged && geteuid() == 0)
        p.start("setpriv", QStringList{"--reuid=65534", "--regid=65534", "--clear-groups", VELDO_PROGRAM} + arguments);
    else
        p.start(VELDO_PROGRAM, arguments);
    p.waitForFinished(60000);
    const int code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    return {code, QString::fromLocal8Bit(p.readAllStandardOutput()), QString::fromLocal8Bit(p.readAllStandardError())};
}

}  // namespace veldo::testing
