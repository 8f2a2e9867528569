#include "util/safe_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace veldo {
namespace {

void set_error(QString* error, const QString& text) {
    if (error) *error = text;
}

// QSaveFile renames over the target, which would slip past a read-only flag.
bool target_writable(const QString& path, QString* error) {
    const QFileInfo info(path);
    if (info.exists() && !info.isWritable()) {
        set_error(error, QStringLiteral("%1: read-only").arg(path));
        return false;
    }
    return true;
}

}  // namespace

bool write_file_atomic(const QString& path, const QByteArray& bytes, QString* error) {
    if (!target_writable(path, error)) return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        set_error(error, file.errorString());
        return false;
    }
    if (file.write(bytes) != bytes.size()) {
        set_error(error, file.errorString());
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        set_error(error, file.errorString());
        return false;
    }
    return true;
}

bool copy_file_atomic(const QString& from, const QString& to, QString* error) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly)) {
        set_error(error, source.errorString());
        return false;
    }
    if (!target_writable(to, error)) return false;
    QSaveFile target(to);
    if (!target.open(QIODevice::WriteOnly)) {
        set_error(error, target.errorString());
        return false;
    }
    QByteArray chunk;
    while (!source.atEnd()) {
        chunk = source.read(1 << 16);
        if (chunk.isEmpty()) {
            if (source.error() == QFileDevice::NoError) break;
            set_error(error, source.errorString());
            target.cancelWriting();
            return false;
        }
        if (target.write(chunk) != chunk.size()) {
            set_error(error, target.errorString());
            target.cancelWriting();
            return false;
        }
    }
    if (!target.commit()) {
        set_error(error, target.errorString());
        return false;
    }
    return true;
}

}  // namespace veldo
