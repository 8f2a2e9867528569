#pragma once
// Record files by table code: the file-number table with its two ranges,
// the opener of the catalogue's tables, the opener of the mark series table
// `E_C`, reading and writing whole records, and the close-everything order.

#include <QFile>
#include <QHash>
#include <QString>
#include <map>
#include <memory>
#include <optional>

#include "store/record_layout.h"
#include "store/run_state.h"

namespace veldo {

// The file number and record count the run state keeps for each table.
struct TableVar {
    int file_number = 0;
    int record_count = 0;
};

class RecordStore {
public:
    static constexpr int kHandleCount = 512;   // numbers 0..511
    static constexpr int kLowFirst = 11, kLowLast = 100;
    static constexpr int kHighFirst = 101, kHighLast = 511;
    static constexpr int kCloseAll = 999;      // the order to close everything

    explicit RecordStore(RunState& run);
    ~RecordStore();
    RecordStore(const RecordStore&) = delete;
    RecordStore& operator=(const RecordStore&) = delete;

    RunState& run() { return run_; }

    // --- file numbers ---
    // A free number of the range, marked taken. A range without a free number
    // shows the exhaustion message, closes everything and ends the program
    // (throws ProgramEnd).
    int allocate_file_handle(bool want_low_range);
    // Closes, frees and zeroes the variable; 999 closes everything.
    void close_table_file(int& file_number);
    void forget_table_handle(int file_number);
    void reset_table_handles();
    bool table_needs_opening(int& file_number, const QString& folder, const QString& code);
    void remember_open_table(int file_number, const QString& folder, const QString& code);
    // A plain close: the file is shut, the number stays taken.
    void plain_close(int file_number);

    bool file_in_use(int n) const { return valid(n) && in_use_[n] != 0; }
    QString file_folder(int n) const { return valid(n) ? folder_[n] : QString(); }
    QString file_code(int n) const { return valid(n) ? code_[n] : QString(); }
    int open_file_count() const { return open_file_count_; }

    // --- tables ---
    // `code` "*" opens every table in catalogue order. A blank folder means
    // the administration program's yearly folder; `check_folder` defaults to
    // the folder. Messages for a missing folder or drive go to the user.
    void open_table(const QString& code = "*", const QString& folder = QString(),
                    const std::optional<QString>& check_folder = std::nullopt);
    // The mark series table; creates an empty file when there is none.
    void open_exp_mrk_control(const QString& code, const QString& folder);

    TableVar& table(const QString& code) { return tables_[code]; }
    const TableVar table(const QString& code) const { return tables_.value(code); }
    // The record buffer of a table (reading overwrites it whole).
    RecordBuffer& buffer(const QString& code);

    int series_count() const { return tables_.value("E_C").record_count; }
    int series_index = 0;

    // --- records of an open file ---
    bool read_record(int file_number, int record, RecordBuffer& buffer);
    bool write_record(int file_number, int record, const RecordBuffer& buffer);
    bool read_next(int file_number, RecordBuffer& buffer);
    bool at_end(int file_number) const;
    void rewind(int file_number);
    // The count of a record file: length / record length, rounded to the even
    // number on a tie (88, 110 and 66 bytes at 44 give 2).
    static int record_count_of(qint64 file_length, int record_length);

    // Opens `path` for random access on `file_number`, creating it when it is
    // missing. False when it can't be opened; the number stays taken.
    bool open_record_file(int file_number, const QString& path, int record_length);
    // A record file opened but not writable: the read-only data-set message
    // and the end of the program.
    void refuse_if_read_only(int file_number, const QString& path);

    // The drive of a folder: the stand-in for the current drive when the
    // folder lies under it, else the folder's mount point.
    QString drive_of(const QString& folder) const;
    bool drive_exists(const QString& drive) const;
    QString default_table_folder() const;

private:
    struct OpenFile {
        QFile file;
        int record_length = 1;
        qint64 next_record = 1;
    };
    bool valid(int n) const { return n >= 0 && n < kHandleCount; }
    OpenFile* open_file(int n) const;
    void close_everything();
    bool test_drive(const QString& folder);
    void run_migrations(const struct CatalogueEntry& entry, const QString& folder);
    bool convert_source(const struct CatalogueEntry& entry, const QString& folder);
    // True when the opener must start again at the first block.
    bool after_open(const struct CatalogueEntry& entry, const QString& folder, TableVar& var);
    void critical(const QString& text);

    RunState& run_;
    short in_use_[kHandleCount] = {};
    QString folder_[kHandleCount];
    QString code_[kHandleCount];
    int open_file_count_ = 0;
    QHash<QString, TableVar> tables_;
    std::map<QString, std::unique_ptr<RecordBuffer>> buffers_;
    std::map<int, std::unique_ptr<OpenFile>> files_;
};

// The messages of the opener, by language.
QString folder_missing_message(const RunState& run, const QString& folder);
QString network_drive_message(const RunState& run, const QString& drive);
// "DATASTEL <folder and file>  IS 'READ ONLY' ... SKAKEL VELDO-HOUSE !"
QString read_only_data_set_message(const RunState& run, const QString& path);
// Shows the read-only data-set message as a critical message and ends the
// program (throws ProgramEnd).
[[noreturn]] void refuse_read_only_data_set(RunState& run, const QString& path);
QString file_handles_message();

}  // namespace veldo
