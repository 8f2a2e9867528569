// Outside bytes as a dBASE table: open, walk, read every field, then try
// every kind of change. Whatever the bytes, nothing may crash.

#include "store/dbf_table.h"
#include "util/text_helpers.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <QVariant>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

namespace {

// One file for the whole run, so the temporary folder does not fill up.
const QString& scratch_path() {
    static const QString path =
        QDir::temp().filePath(QStringLiteral("fuzz_dbf_table_%1.dbf").arg(::getpid()));
    // Registered after `path` is made, so it runs before `path` goes.
    static const bool cleanup = [] {
        std::atexit([] { QFile::remove(scratch_path()); });
        return true;
    }();
    (void)cleanup;
    return path;
}

void walk(veldo::DbfTable& table) {
    for (table.MoveFirst(); !table.Eof(); table.MoveNext()) {
        for (int i = 0; i < table.field_count(); ++i) {
            (void)table.value(i);
            (void)table.value(table.field(i).name);
        }
    }
}

QVariant sample(int i) {
    switch (i % 6) {
    case 0: return QStringLiteral("Anë");
    case 1: return 12.5;
    case 2: return QVariant::fromValue(veldo::OleDate{45000.0});
    case 3: return true;
    case 4: return QVariant();
    default: return 1.0e30;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString& path = scratch_path();
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return 0;
        file.write(reinterpret_cast<const char*>(data), qint64(size));
    }

    veldo::DbfError error;
    auto table = veldo::DbfTable::open(path, &error);
    if (!table) {
        (void)veldo::dbf_error_message(error, true);
        return 0;
    }
    walk(*table);

    // Each record written back as read, then one added and one deleted.
    table->MoveFirst();
    if (table->Edit()) {
        for (int i = 0; i < table->field_count(); ++i) table->set_value(i, table->value(i));
        table->Update();
    }
    if (table->AddNew()) {
        for (int i = 0; i < table->field_count(); ++i) table->set_value(i, sample(i));
        if (!table->Update()) table->CancelUpdate();
    }
    table->MoveLast();
    table->Move(-2);
    table->Delete();
    table->MoveNext();
    table->Move(3);
    table->MovePrevious();
    if (table->Refresh()) walk(*table);
    table->flush();
    table->Close();
    return 0;
}
