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

class SilentDialogs : public veldo::UserDialogs {
public:
    veldo::MsgAnswer message(const QString&, veldo::MsgIcon, veldo::MsgButtons, const QString&) override {
        return veldo::MsgAnswer::Ok;
    }
    QString input(const QString&, const QString&, const QString& d) override { return d; }
    void beep() override {}
    QString choose_folder(const QString&, const QString&) override { return {}; }
    QString choose_open_file(const QString&, const QString&, const QString&) override { return {}; }
    QString choose_save_file(const QString&, const QString&, const QString&) override { return {}; }
    QString clipboard_text() override { return {}; }
    void set_clipboard_text(const QString&) override {}
};

void write(const QString& path, const uint8_t* data, size_t size) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
    f.write(reinterpret_cast<const char*>(data), qint64(size));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static QTemporaryDir dir;
    SilentDialogs dialogs;
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
