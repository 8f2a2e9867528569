#include "util/file_lookup.h"

#include <QDir>
#include <QFileInfo>

namespace veldo {
namespace {

QString join(const QString& folder, const QString& name) {
    if (folder.isEmpty()) return name;
    if (folder.endsWith(QLatin1Char('/'))) return folder + name;
    return folder + QLatin1Char('/') + name;
}

// One path component looked up in one folder.
QString find_entry(const QString& folder, const QString& name) {
    const QString exact = join(folder, name);
    if (QFileInfo::exists(exact)) return exact;
    QDir dir(folder.isEmpty() ? QStringLiteral(".") : folder);
    if (!dir.exists()) return QString();
    // Sorted by name so that two spellings of one name always give the same one.
    const QStringList entries =
        dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDir::Name);
    for (const QString& entry : entries)
        if (entry.compare(name, Qt::CaseInsensitive) == 0) return join(folder, entry);
    return QString();
}

}  // namespace

QString find_ignoring_case(const QString& folder, const QString& name) {
    if (name.isEmpty()) return QString();
    const QString exact = join(folder, name);
    if (QFileInfo::exists(exact)) return exact;
    // A name with folders in it is resolved one part at a time.
    const QStringList parts = name.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (parts.isEmpty()) return QString();
    QString current = folder;
    if (name.startsWith(QLatin1Char('/')) && folder.isEmpty()) current = QStringLiteral("/");
    for (const QString& part : parts) {
        current = find_entry(current, part);
        if (current.isEmpty()) return QString();
    }
    return current;
}

QString path_ignoring_case(const QString& folder, const QString& name) {
    const QString found = find_ignoring_case(folder, name);
    return found.isEmpty() ? join(folder, name) : found;
}

bool file_exists_ignoring_case(const QString& folder, const QString& name) {
    const QString found = find_ignoring_case(folder, name);
    return !found.isEmpty() && !QFileInfo(found).isDir();
}

bool folder_exists(const QString& folder) { return !folder.isEmpty() && QFileInfo(folder).isDir(); }

}  // namespace veldo
