#include "store/run_state.h"

#include <QDir>
#include <QProcessEnvironment>

namespace veldo {

QString RunState::in_folder(const QString& folder, const QString& name) const {
    QString base = folder.trimmed().isEmpty() ? drive_root : folder;
    while (base.size() > 1 && (base.endsWith('/') || base.endsWith('\\'))) base.chop(1);
    if (base.isEmpty()) base = QDir::rootPath();
    return base == "/" ? "/" + name : base + "/" + name;
}

QString drive_root_from_environment() {
    const QString env = qEnvironmentVariable("KESTRALIN_DRIVE");
    if (!env.trimmed().isEmpty()) return QDir::cleanPath(QDir(env).absolutePath());
    return QDir::homePath();
}

}  // namespace veldo
