#pragma once
// A drive root and data folder in a temporary directory, with a run state
// and record store wired to a scripted dialog service.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <memory>
#include <ostream>

#include "store/record_store.h"
#include "store/run_state.h"
#include "tests/support/scripted_dialogs.h"

// Failures show texts as text.
inline void PrintTo(const QString& text, std::ostream* os) { *os << '"' << text.toStdString() << '"'; }

namespace veldo::testing {

struct TempDrive {
    QString start_folder = QDir::currentPath();  // a start moves into the program folder
    QTemporaryDir dir;
    ScriptedDialogs dialogs;
    RunState run;
    std::unique_ptr<RecordStore> store;

    TempDrive() {
        run.dialogs = &dialogs;
        run.drive_root = dir.path();
        run.data_folder = dir.filePath("data");
        run.family_folder = dir.filePath("ProgramData/KESTRALIN");
        run.current_year = "2026";
        run.today = QDate(2026, 11, 23);
        QDir().mkpath(run.data_folder);
        QDir().mkpath(run.family_folder);
        store = std::make_unique<RecordStore>(run);
    }
    ~TempDrive() { QDir::setCurrent(start_folder); }
    QString path(const QString& relative) const { return dir.filePath(relative); }
    QString data(const QString& name) const { return QDir(run.data_folder).filePath(name); }
};

inline void write_bytes(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    f.open(QIODevice::WriteOnly | QIODevice::Truncate);
    f.write(bytes);
}

inline QByteArray read_bytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace veldo::testing
