#include "store/record_store.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <cmath>

#include "store/catalogue.h"
#include "store/dbf_table.h"
#include "store/locks.h"
#include "store/school_record.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/text_helpers.h"

namespace veldo {

QString folder_missing_message(const RunState& run, const QString& folder) {
    return run.tr("DIE GIDS " + folder + " BESTAAN NIE!", "THE FOLDER " + folder + " DOES NOT EXIST!");
}

QString read_only_data_set_message(const RunState& run, const QString& path) {
    const QString shown = QDir::toNativeSeparators(path);
    return run.tr("DATASTEL " + shown + "  IS 'READ ONLY' ... SKAKEL VELDO-HOUSE !",
                  "DATASET " + shown + "  IS 'READ ONLY' ... CONTACT VELDO-HOUSE !");
}

void refuse_read_only_data_set(RunState& run, const QString& path) {
    if (run.dialogs) run.dialogs->message(read_only_data_set_message(run, path), MsgIcon::Critical);
    throw ProgramEnd{1};
}

QString network_drive_message(const RunState& run, const QString& drive) {
    return run.tr("NETWERK AANDRYWER  " + drive + "  NIE BESKIKBAAR NIE ...\r\n\r\nKONTAK U NETWERKADMINISTRATEUR !",
                  "NETWORK DRIVE  " + drive + "  NOT AVAILABLE ...\r\n\r\nCONTACT YOUR NETWORK ADMINISTRATOR !");
}

QString file_handles_message() {
    return "System error!\r\nAll available File Handles are used!\r\nSystem will now terminate... Please reload.";
}

RecordStore::RecordStore(RunState& run) : run_(run) {}

RecordStore::~RecordStore() = default;

void RecordStore::critical(const QString& text) {
    if (run_.dialogs) run_.dialogs->message(text, MsgIcon::Critical);
}

// ---------------------------------------------------------------- numbers

int RecordStore::allocate_file_handle(bool want_low_range) {
    const int first = want_low_range ? kLowFirst : kHighFirst;
    const int last = want_low_range ? kLowLast : kHighLast;
    for (int n = first; n <= last; ++n) {
        if (in_use_[n] == 0) {
            in_use_[n] = 1;
            ++open_file_count_;
            return n;
        }
    }
    critical(file_handles_message());
    int all = kCloseAll;
    close_table_file(all);
    throw ProgramEnd{1};
}

void RecordStore::close_table_file(int& file_number) {
    if (file_number == 0) return;
    if (file_number == kCloseAll) {
        close_everything();
        return;
    }
    const int n = file_number;
    files_.erase(n);
    if (valid(n)) {
        in_use_[n] = 0;
        folder_[n].clear();
        code_[n].clear();
    }
    open_file_count_ = std::max(open_file_count_ - 1, 0);
    forget_table_handle(n);
    file_number = 0;
}

void RecordStore::close_everything() {
    files_.clear();
    for (int n = 0; n < kHandleCount; ++n) {
        in_use_[n] = 0;
        folder_[n].clear();
        code_[n].clear();
    }
    open_file_count_ = 0;
    reset_table_handles();
    clear_user_locks(*this, run_.data_folder);
    open_table("SKL", run_.school_folder);
}

void RecordStore::plain_close(int file_number) { files_.erase(file_number); }

void RecordStore::forget_table_handle(int file_number) {
    for (auto it = tables_.begin(); it != tables_.end(); ++it)
        if (it->file_number == file_number) it->file_number = 0;
}

void RecordStore::reset_table_handles() {
    for (auto it = tables_.begin(); it != tables_.end(); ++it) *it = TableVar{};
}

bool RecordStore::table_needs_opening(int& file_number, const QString& folder, const QString& code) {
    if (file_number == 0) return true;
    const int n = file_number;
    if (valid(n) && n > 100 && folder.trimmed() == folder_[n] && code.trimmed() == code_[n] && open_file(n)) {
        rewind(n);
        return false;
    }
    close_table_file(file_number);
    if (valid(n)) {
        folder_[n].clear();
        code_[n].clear();
    }
    return true;
}

void RecordStore::remember_open_table(int file_number, const QString& folder, const QString& code) {
    if (!valid(file_number)) return;
    folder_[file_number] = folder.trimmed();
    code_[file_number] = code.trimmed();
}

// ---------------------------------------------------------------- files

RecordStore::OpenFile* RecordStore::open_file(int n) const {
    auto it = files_.find(n);
    return it == files_.end() ? nullptr : it->second.get();
}

bool RecordStore::open_record_file(int file_number, const QString& path, int record_length) {
    auto f = std::make_unique<OpenFile>();
    f->file.setFileName(path);
    f->record_length = std::max(record_length, 1);
    // Shared like the family's random files: no lock on the file. A file we
    // may not write is still read.
    if (!f->file.open(QIODevice::ReadWrite) && !f->file.open(QIODevice::ReadOnly)) return false;
    files_[file_number] = std::move(f);
    return true;
}

void RecordStore::refuse_if_read_only(int file_number, const QString& path) {
    const OpenFile* f = open_file(file_number);
    if (f && f->file.isOpen() && !f->file.isWritable()) {
        close_table_file(file_number);
        refuse_read_only_data_set(run_, path);
    }
}

int RecordStore::record_count_of(qint64 file_length, int record_length) {
    if (record_length <= 0 || file_length <= 0) return 0;
    const double exact = double(file_length) / double(record_length);
    const double count = std::nearbyint(exact);  // ties to even
    return int(std::min(count, 32767.0));
}

bool RecordStore::read_record(int file_number, int record, RecordBuffer& buffer) {
    OpenFile* f = open_file(file_number);
    if (!f || record < 1) return false;
    const int len = f->record_length;
    if (!f->file.seek(qint64(record - 1) * len)) return false;
    QByteArray raw = f->file.read(len);
    if (raw.isEmpty()) return false;
    buffer.set_bytes(raw);
    f->next_record = record + 1;
    return true;
}

bool RecordStore::write_record(int file_number, int record, const RecordBuffer& buffer) {
    OpenFile* f = open_file(file_number);
    if (!f || record < 1) return false;
    const int len = f->record_length;
    QByteArray raw = buffer.bytes().left(len);
    if (raw.size() < len) raw.append(len - raw.size(), '\0');
    if (!f->file.seek(qint64(record - 1) * len)) return false;
    if (f->file.write(raw) != len) return false;
    f->file.flush();
    f->next_record = record + 1;
    return true;
}

bool RecordStore::read_next(int file_number, RecordBuffer& buffer) {
    OpenFile* f = open_file(file_number);
    return f && read_record(file_number, int(f->next_record), buffer);
}

bool RecordStore::at_end(int file_number) const {
    OpenFile* f = open_file(file_number);
    return !f || (f->next_record - 1) * f->record_length >= f->file.size();
}

void RecordStore::rewind(int file_number) {
    if (OpenFile* f = open_file(file_number)) f->next_record = 1;
}

RecordBuffer& RecordStore::buffer(const QString& code) {
    auto& slot = buffers_[code];
    if (!slot) {
        const RecordLayout* layout = nullptr;
        if (code == "SKL") layout = &school_record_layout();
        else if (code == "PI2") layout = &symbol_record_layout();
        else if (const CatalogueEntry* e = catalogue_entry(code); e && e->single_record_block)
            layout = &school_addition_layout();
        slot = std::make_unique<RecordBuffer>(layout);
    }
    return *slot;
}

// ---------------------------------------------------------------- drives

QString RecordStore::drive_of(const QString& folder) const {
    const QString clean = QDir::cleanPath(folder);
    const QString root = QDir::cleanPath(run_.drive_root);
    if (!root.isEmpty() && (clean == root || clean.startsWith(root + "/"))) return root;
    QString probe = clean;
    while (!probe.isEmpty() && !QFileInfo::exists(probe)) {
        const QString parent = QFileInfo(probe).path();
        if (parent == probe) break;
        probe = parent;
    }
    QStorageInfo info(probe.isEmpty() ? QDir::rootPath() : probe);
    const QString drive = info.isValid() ? info.rootPath() : QString();
    return drive.isEmpty() ? root : drive;
}

bool RecordStore::drive_exists(const QString& drive) const { return QDir(drive).exists(); }

bool RecordStore::test_drive(const QString& folder) {
    QString drive = drive_of(folder);
    if (drive.trimmed().isEmpty()) drive = run_.drive_root;
    run_.drive_name = drive;
    if (drive_exists(drive)) return true;
    critical(network_drive_message(run_, drive));
    throw ProgramEnd{1};
}

QString RecordStore::default_table_folder() const {
    return run_.in_folder(run_.admin_folder, "L" + run_.year_prefix + run_.current_year.right(2));
}

// ---------------------------------------------------------------- opening

void RecordStore::open_table(const QString& code_in, const QString& folder_in,
                             const std::optional<QString>& check_in) {
    const QString code = code_in.isEmpty() ? QStringLiteral("*") : code_in;
    QString folder = folder_in;
    if (folder.trimmed().isEmpty()) {
        folder = default_table_folder();
        if (run_.school_folder.trimmed().isEmpty()) run_.school_folder = folder;
    }
    const QString check_folder = check_in.has_value() ? *check_in : folder;

    if (!folder_exists(folder)) {
        critical(folder_missing_message(run_, folder));
        return;
    }
    test_drive(folder);
    test_drive(check_folder);

    const auto& catalogue = table_catalogue();
    for (int i = 0; i < catalogue.size(); ++i) {
        const CatalogueEntry& entry = catalogue[i];
        if (code != "*" && code != entry.code) continue;

        if (!entry.source.isEmpty() && !file_exists_ignoring_case(folder, entry.file) &&
            file_exists_ignoring_case(folder, entry.source) && convert_source(entry, folder)) {
            i = -1;  // the record file exists now: start again at the first block
            continue;
        }

        TableVar& var = tables_[entry.code];
        const QString path = path_ignoring_case(folder, entry.file);
        const bool fresh = entry.code == "SKL" || table_needs_opening(var.file_number, folder, entry.code);
        if (fresh) {
            if (!entry.single_record_block) run_migrations(entry, folder);
            var.file_number = allocate_file_handle(false);
            open_record_file(var.file_number, path, entry.record_length);
            refuse_if_read_only(var.file_number, path);
            if (!entry.single_record_block) remember_open_table(var.file_number, folder, entry.code);
        }
        if (entry.after_open != AfterOpen::NoCount)
            var.record_count = record_count_of(QFileInfo(path).size(), entry.record_length);
        if (after_open(entry, folder, var)) {
            i = -1;
            continue;
        }
        if (code != "*") return;
    }
}

void RecordStore::open_exp_mrk_control(const QString& code, const QString& folder) {
    if (code != "*" && code != "E_C") return;
    TableVar& var = tables_["E_C"];
    if (!table_needs_opening(var.file_number, folder, "E_C")) return;
    var.file_number = allocate_file_handle(false);
    const QString path = path_ignoring_case(folder, "exp_mrk_control.txt");
    open_record_file(var.file_number, path, 44);
    refuse_if_read_only(var.file_number, path);
    var.record_count = record_count_of(QFileInfo(path).size(), 44);
}

bool RecordStore::after_open(const CatalogueEntry& entry, const QString& folder, TableVar& var) {
    RecordBuffer& buf = buffer(entry.code);
    switch (entry.after_open) {
        case AfterOpen::ReadRecord1:
            if (var.record_count > 0) read_record(var.file_number, 1, buf);
            return false;
        case AfterOpen::ReadOrCreateRecord1:
            if (var.record_count > 0) {
                read_record(var.file_number, 1, buf);
            } else {
                buf.clear();
                if (write_record(var.file_number, 1, buf)) var.record_count = 1;
            }
            return false;
        case AfterOpen::CleanAbove2000:
            if (var.record_count > 2000) {
                if (OpenFile* f = open_file(var.file_number)) f->file.resize(0);
                var.record_count = 0;
                if (run_.dialogs) run_.dialogs->message("?");
                return true;
            }
            return false;
        case AfterOpen::StandardSymbols: {
            // Four symbols for the old outcomes years, seven otherwise.
            const double prefix = Val(run_.year_prefix);
            const bool four = prefix > 3 && prefix < 7 && Val(run_.current_year) < 2013;
            struct Row { const char* symbol; float upper, lower; };
            static const Row seven[] = {{"1", 29, 0},  {"2", 39, 30}, {"3", 49, 40}, {"4", 59, 50},
                                        {"5", 69, 60}, {"6", 79, 70}, {"7", 100, 80}};
            static const Row fourset[] = {{"1", 34, 0}, {"2", 49, 35}, {"3", 69, 50}, {"4", 100, 70}};
            const Row* rows = four ? fourset : seven;
            const int size = four ? 4 : 7;
            if (var.record_count >= size) return false;
            for (int r = var.record_count; r < size; ++r) {
                buf.clear();
                buf.set_text("pi2_simbl", rows[r].symbol);
                buf.set_single("pi2_grns_b", rows[r].upper);
                buf.set_single("pi2_grns_o", rows[r].lower);
                write_record(var.file_number, r + 1, buf);
            }
            var.record_count = record_count_of(QFileInfo(path_ignoring_case(folder, entry.file)).size(),
                                               entry.record_length);
            return false;
        }
        case AfterOpen::RebuildWhenOdd:
            if (var.record_count == 0 || var.record_count >= 11) {
                const QString path = path_ignoring_case(folder, entry.file);
                close_table_file(var.file_number);
                QFile::remove(path);
                var.file_number = allocate_file_handle(false);
                open_record_file(var.file_number, path, entry.record_length);
                remember_open_table(var.file_number, folder, entry.code);
                var.record_count = 0;
            }
            return false;
        case AfterOpen::MergeSecondFile: {
            const QString second = find_ignoring_case(folder, "gedrag2_random.txt");
            if (second.isEmpty()) return false;
            QFile in(second);
            if (!in.open(QIODevice::ReadOnly)) return false;
            const QByteArray all = in.readAll();
            in.close();
            RecordLayout whole{{"record", FieldKind::Text, entry.record_length}};
            RecordBuffer rec(&whole);
            for (qsizetype at = 0; at + entry.record_length <= all.size(); at += entry.record_length) {
                rec.set_bytes(all.mid(at, entry.record_length));
                if (write_record(var.file_number, var.record_count + 1, rec)) ++var.record_count;
            }
            QFile::remove(second);
            return false;
        }
        default:
            // The other steps belong to the family programs that own those
            // tables; this program opens none of them.
            return false;
    }
}

void RecordStore::run_migrations(const CatalogueEntry& entry, const QString& folder) {
    for (const MigrationStep& step : entry.migrations) {
        if (file_exists_ignoring_case(folder, step.marker)) continue;
        if (step.only_before_2017 && Val(run_.current_year) >= 2017) continue;
        const QString live = path_ignoring_case(folder, entry.file);
        if (QFileInfo::exists(live)) {
            // Keep the old file beside the live one, then copy its records
            // over. The family's layouts of these tables are the same length
            // here, so the copy is record for record.
            const QString previous = QDir(folder).filePath(previous_layout_name(QFileInfo(live).fileName()));
            QFile::remove(previous);
            QFile::copy(live, previous);
        }
        QFile marker(QDir(folder).filePath(step.marker));
        marker.open(QIODevice::WriteOnly);
    }
}

bool RecordStore::convert_source(const CatalogueEntry& entry, const QString& folder) {
    const RecordLayout* layout = nullptr;
    if (entry.code == "SKL") layout = &school_record_layout();
    else if (entry.code == "PI2") layout = &symbol_record_layout();
    if (!layout) return false;  // converted by the family program that owns it

    const QString source = find_ignoring_case(folder, entry.source);
    auto dbf = DbfTable::open(source);
    if (!dbf) return false;

    const QString target = path_ignoring_case(folder, entry.file);
    QFile::remove(target);
    TableVar& var = tables_[entry.code];
    var.file_number = allocate_file_handle(false);
    if (!open_record_file(var.file_number, target, layout->length())) {
        close_table_file(var.file_number);
        return false;
    }
    var.record_count = record_count_of(QFileInfo(target).size(), layout->length());
    RecordBuffer rec(layout);
    if (dbf->RecordCount() > 0) {
        dbf->MoveFirst();
        while (!dbf->Eof()) {
            for (int f = 0; f < layout->fields().size(); ++f) {
                const QString name = layout->fields()[f].name;
                if (dbf->field_index(name) >= 0) rec.assign(f, toets_null(dbf->value(name)));
                else rec.assign(f, QVariant());  // a field the old table lacks stays blank
            }
            ++var.record_count;
            write_record(var.file_number, var.record_count, rec);
            dbf->MoveNext();
        }
    }
    close_table_file(var.file_number);
    dbf->Close();
    dbf.reset();

    // The school table stays where it is: it has no copy in "save", and the
    // record file beside it keeps the trigger quiet.
    if (entry.code != "SKL") {
        const QString save = QDir(folder).filePath("save");
        QDir().mkpath(save);
        const QString name = QFileInfo(source).fileName();
        const QString copy = QDir(save).filePath(name);
        QFile::remove(copy);
        if (QFile::copy(source, copy)) QFile::remove(source);
    }
    return true;
}

}  // namespace veldo
