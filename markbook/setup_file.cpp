#include "markbook/setup_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "util/safe_file.h"

namespace veldo {

QString setup_file_name(const QString& key) { return "setup_" + key + ".txt"; }

bool folder_holds_exactly(const QString& folder, const QString& name) {
    return QDir(folder).entryList({name}, QDir::Files).contains(name);
}

namespace {

bool holds_exactly(const QString& folder, const QString& key) {
    return folder_holds_exactly(folder, setup_file_name(key));
}

}  // namespace

std::optional<QString> find_setup_key(const QString& data_folder, const QString& key, SetupSearch search) {
    QString form = key;
    if (holds_exactly(data_folder, form)) return form;
    form.remove('_');
    if (holds_exactly(data_folder, form)) return form;
    if (search == SetupSearch::Readers) {
        form.remove(' ');
        if (holds_exactly(data_folder, form)) return form;
    }
    return std::nullopt;
}

QString setup_screen_key(const QString& data_folder, const QString& key) {
    if (holds_exactly(data_folder, key)) return key;
    return QString(key).remove('_');
}

std::optional<MarkBookSetup> read_setup_file(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return std::nullopt;
    return MarkBookSetup::from_file_bytes(f.readAll());
}

bool write_setup_file(const QString& path, const MarkBookSetup& setup, QString* error) {
    return write_file_atomic(path, setup.to_file_bytes(), error);
}

}  // namespace veldo
