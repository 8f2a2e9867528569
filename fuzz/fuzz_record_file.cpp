// Outside bytes as record files: the mark series table and the school
// record, read through the same routines the screens use.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

#include "shell/startup.h"
#include "store/record_store.h"
#include "store/series.h"

namespace {

void write(const QString& path, const uint8_t* data, size_t size) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
    f.write(reinterpret_cast<const char*>(data), qint64(size));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static QTemporaryDir dir;
    veldo::SilentDialogs dialogs;
    veldo::RunState run;
    run.dialogs = &dialogs;
    run.drive_root = dir.path();
    run.data_folder = dir.path();
    run.current_year = "2026";
    write(dir.filePath("exp_mrk_control.txt"), data, size);
    write(dir.filePath("Skl_Dta_random.txt"), data, size);

    veldo::RecordStore store(run);
    const auto rows = veldo::series_rows(store);
    if (rows.size() != store.series_count()) std::abort();
    for (const auto& row : rows) {
        if (row.size() != 9) std::abort();
        (void)veldo::series_key(row);
    }
    (void)veldo::mark_list_items(store);
    (void)veldo::class_list(store);
    veldo::read_school_name(run, store);
    return 0;
}
