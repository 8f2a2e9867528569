#include "store/locks.h"

#include <QFile>
#include <QFileInfo>

#include "store/record_store.h"
#include "util/file_lookup.h"
#include "util/quoted_values.h"
#include "util/text_helpers.h"

namespace veldo {

const RecordLayout& lock_record_layout() {
    static const RecordLayout layout{{"lock_user", FieldKind::Text, 50},  {"lock_date", FieldKind::Date},
                                     {"lock_table", FieldKind::Text, 20}, {"lock_type", FieldKind::Text, 10},
                                     {"lock_number", FieldKind::Int16},   {"lock_folder", FieldKind::Text, 50}};
    return layout;
}

bool folder_is_present(const QString& folder) { return folder_exists(folder); }

bool clear_user_locks(RecordStore& store, const QString& folder) {
    if (!folder_exists(folder)) return false;
    RunState& run = store.run();
    const QString path = run.in_folder(run.shared_settings_folder, "user_lock_record.txt");
    int number = store.allocate_file_handle(false);
    if (!store.open_record_file(number, path_ignoring_case(QFileInfo(path).path(), "user_lock_record.txt"), 140)) {
        store.close_table_file(number);
        return true;
    }
    const QString me = get_login_name().trimmed();
    const QString here = folder.trimmed();
    const int count = int(QFileInfo(path).size() / 140);
    RecordBuffer slot(&lock_record_layout());
    for (int r = 1; r <= count; ++r) {
        if (!store.read_record(number, r, slot)) break;
        const bool clear = slot.text("lock_type").trimmed() == "L" &&
                           slot.text("lock_folder").trimmed() == here &&
                           slot.text("lock_user").trimmed() != me;
        if (!clear) continue;
        slot.clear();
        if (!store.write_record(number, r, slot)) break;
    }
    store.close_table_file(number);
    return true;
}

bool read_network_switch(RunState& run) {
    const QString found = find_ignoring_case(run.family_folder, "networklock.txt");
    if (!found.isEmpty()) {
        QFile f(found);
        if (!f.open(QIODevice::ReadOnly)) return false;
        const auto values = read_quoted_values(f.readAll());
        return !values.isEmpty() && values.first().as_bool();
    }
    QFile f(run.in_folder(run.family_folder, "networklock.txt"));
    if (f.open(QIODevice::WriteOnly)) f.write(write_quoted_lines({{QuotedValue::of_bool(false)}}));
    return false;
}

}  // namespace veldo
