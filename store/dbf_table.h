#pragma once
// dBASE III tables (`marks<N>.dbf`, `punte<N>.dbf`, `pi2_dta.dbf`, ...) with
// the recordset operations the screens use: walk, read by position or name,
// Edit/AddNew/Update, Delete, Refresh.
//
// An open table keeps one file handle for its whole life and a copy of the
// file in memory, read at open in one go: a walk costs no disk access. A
// change goes to the disk at once, as positioned writes of the record and of
// the header's date and count; whole-table work (a recalculation, a rebuild,
// an export) gathers its changes in a batch and writes them once. shapelib
// creates new tables; its record access seeks and rereads the header for
// every record, which on a network drive is a round trip each, so records
// are laid out here, byte for byte as shapelib lays them out: the record,
// the end-of-file mark after the last one, the header's date and count.
// Fields are cut and converted here too: a comma locale must never change a
// stored byte.
//
// Values are QVariants as in util/text_helpers.h: an invalid QVariant is Null.
// A field whose bytes are all blank reads as Null. Character fields read as
// the text on disk, blanks kept (callers trim); N and F fields as double;
// D fields as OleDate; L fields as bool; M fields as their raw block text.

#include <QList>
#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

#include "store/table_file.h"

namespace veldo {

enum class DbfType { Character, Numeric, Date, Logical, Memo, Other };

struct DbfField {
    QString name;
    DbfType type = DbfType::Character;
    int width = 0;
    int decimals = 0;
};

struct DbfError {
    enum Code {
        None,
        Missing,          // no such file
        Unreadable,       // there, but the system may not read it
        Empty,            // 0 bytes
        NotATable,        // not a dBASE file at all
        Damaged,          // a dBASE header whose fields do not add up
        Truncated,        // shorter than its header says: records are missing
        ReadOnly,         // a change asked of a read-only table or file
        WriteFailed,      // the disk refused a write
        NoSuchField,      // unknown field name or position; `detail` names it
        NoCurrentRecord,  // at BOF/EOF, or the current record was deleted
        NotEditing,       // set_value/Update without Edit or AddNew
        BadValue,         // a value the field's type cannot hold
        TooWide,          // a number with more digits than the field
        BadField,         // create: a field description dBASE III refuses
        InUse,            // another workstation holds the record or the table past the wait
        Replaced,         // another workstation put a new file in the table's place (a rebuild)
    };
    Code code = None;
    QString path;
    QString detail;  // the field concerned, where there is one
};

// The message a user gets, in Afrikaans or English.
QString dbf_error_message(const DbfError& error, bool afrikaans);

enum class DbfAccess { ReadWrite, ReadOnly };

class DbfTable {
public:
    // Opens a table and puts the walk on its first live record. A table that
    // may not be written opens read-only (see is_read_only). The header is
    // checked before shapelib sees it: a foreign, empty, damaged or short
    // file gives nullptr and `error`. A truncated table is refused rather than
    // opened with the records that are left, so that nothing writes a smaller
    // record count over it.
    static std::unique_ptr<DbfTable> open(const QString& path, DbfError* error = nullptr,
                                          DbfAccess access = DbfAccess::ReadWrite);

    // Writes a new empty table over `path` (atomically): version 0x03, or 0x83
    // with an empty `.dbt` (`.ort` beside a template `.org`) when a field is a
    // memo; today's date; field names in upper case; a table set read-only is
    // left alone (ReadOnly). Date, Logical and Memo fields take their fixed
    // widths (8, 1, 10). The limits of dBASE III hold: 128 fields, names
    // of 1 to 10 letters, digits and '_' starting with a letter, text up to
    // 254, numbers up to 19 wide with at most 15 decimals, records up to 4000.
    static bool create(const QString& path, const QList<DbfField>& fields,
                       DbfError* error = nullptr);

    ~DbfTable();
    DbfTable(const DbfTable&) = delete;
    DbfTable& operator=(const DbfTable&) = delete;

    const QString& path() const { return path_; }
    bool is_open() const { return file_.is_open(); }
    bool is_read_only() const { return read_only_; }

    // The walk. Deleted records are never seen; the list of live records is
    // taken at open and at Refresh, and records added here join its end.
    // A move abandons an Edit or AddNew that was not updated, as DAO does.
    // Moves past either end stop at BOF or EOF and never fail.
    // (EOF is a C macro, hence Eof/Bof.)
    void MoveFirst();
    void MoveNext();
    void MovePrevious();
    void MoveLast();
    void Move(int rows);  // relative to the current record
    bool Eof() const;
    bool Bof() const;
    int RecordCount() const { return int(live_.size()); }
    // Index of the current record among the live ones; -1 when there is none
    // (BOF, EOF, or the current record was just deleted).
    int position() const;

    int field_count() const { return int(fields_.size()); }
    const DbfField& field(int i) const;
    // Ignoring case; -1 when there is none.
    int field_index(const QString& name) const;

    // The current record's value, or the value set so far during an Edit or
    // AddNew. Unknown fields and a missing current record give Null and
    // last_error(); nothing throws.
    QVariant value(int i) const;
    QVariant value(const QString& name) const;

    // The current record as stored, or as set so far during an Edit or
    // AddNew: the deletion flag, then each field at field_offset(i), its
    // width long. Empty when there is no current record. For whole-table
    // work that must not pay for a QVariant per field.
    QByteArrayView record_bytes() const;
    int field_offset(int i) const { return i >= 0 && i < int(offsets_.size()) ? offsets_[std::size_t(i)] : -1; }
    int record_length() const { return record_length_; }
    // During Edit or AddNew: every field's bytes at once, copied as they
    // are (`bytes` is a whole record; its deletion flag is not taken).
    bool set_record_bytes(QByteArrayView bytes);

    // Changes. Edit locks the current record against other workstations and
    // copies it afresh from disk (and fails if another workstation deleted
    // it meanwhile, holds it past the wait (InUse), or replaced the whole
    // file (Replaced)); the lock goes with Update, CancelUpdate or a move.
    // AddNew starts a blank one; its Update finds its place at the end under
    // the header's lock.
    // set_value writes text left-justified, cut at the width; numbers
    // right-justified with the field's decimals (half away from zero)
    // and '.' as decimal sign; dates yyyymmdd; logicals T/F; Null as blanks.
    // A number too wide for its field is refused (TooWide): set_value returns
    // false and Update refuses until CancelUpdate, so no asterisks or cut
    // digits ever reach the disk.
    bool Edit();
    bool AddNew();
    bool set_value(int i, const QVariant& value);
    bool set_value(const QString& name, const QVariant& value);
    bool is_editing() const { return mode_ != Mode::None; }
    // Writes the record and the header (count, today's date) at once, so other
    // workstations see it. After AddNew the new record becomes the current
    // one (DAO would stay where it was): a caller can read back what it
    // wrote or Edit it again without a search.
    bool Update(DbfError* error = nullptr);
    void CancelUpdate();
    // Marks the current record deleted ('*'). It leaves the walk; there is no
    // current record until the next move, and MoveNext goes on to the record
    // that followed it. A pending Edit is abandoned; during AddNew it is
    // refused.
    bool Delete();
    // Reopens the file, takes the list of live records again and goes to
    // the first. False (and the table closed) if the file can no longer be
    // opened.
    bool Refresh();
    void Close();
    bool flush();
    // The table's file takes `path`'s place in one step (a file standing
    // there goes) and the handle goes on with it under its new name, at its
    // first record. Refused in the middle of an edit or a batch.
    bool rename_to(const QString& path);

    // Whole-table work. Between begin_batch and commit_batch, Edit takes
    // the record from memory, and Update and AddNew change only memory;
    // commit_batch writes every changed and added record in one write and
    // the header once. A failed commit leaves the header counting only what
    // reached the disk, and the table reread from it. Closing a table with
    // an open batch commits it.
    //
    // begin_batch takes the whole table from other workstations (the lock
    // that a rebuild takes too), reads it afresh from the disk and goes to
    // its first record; a table another workstation replaced meanwhile is
    // opened anew first. False (InUse, ReadOnly, or the open's error) when it
    // can't; nothing is then held. commit_batch lets the table go.
    bool begin_batch();
    bool commit_batch(DbfError* error = nullptr);

    // How long a lock is waited for before the system's in-use message;
    // 3 seconds unless a test says otherwise.
    static void set_lock_wait_ms(int ms);
    bool in_batch() const { return batch_; }

    const DbfError& last_error() const { return error_; }
    void clear_error() { error_ = DbfError{}; }

private:
    enum class Mode { None, Edit, AddNew };

    DbfTable() = default;
    bool attach(DbfAccess access, DbfError* error);
    bool load_image(DbfError* error);
    bool reload_image(DbfError* error);
    void take_records(int records);
    void detach();
    bool lock_or_fail(qint64 offset, qint64 length);
    void fail(DbfError::Code code, const QString& detail = QString()) const;
    const char* current_bytes() const;
    bool current_valid() const;
    void leave_edit();
    qint64 record_offset(int record) const { return qint64(header_length_) + qint64(record) * record_length_; }
    char* image_record(int record) { return image_.data() + record_offset(record); }
    bool write_records(int first, int last);
    bool write_header(bool count_changed);
    bool write_through(int last, int count);
    qint64 end_of_span(int last);
    void grow_image(qint64 size);
    bool stamp_header(int count);
    bool can_change();
    int disk_record_count(bool* ok);
    void resync_after_failure();

    QString path_;
    TableFile file_;
    bool read_only_ = false;
    DbfAccess access_ = DbfAccess::ReadWrite;
    QList<DbfField> fields_;
    std::vector<int> offsets_;
    int header_length_ = 0;
    int record_length_ = 0;
    QByteArray image_;  // the header and records as last read or written
    int records_ = 0;   // the header's count as this handle knows it
    bool stamped_ = false;  // today's date is in the header on disk

    std::vector<int> live_;  // record numbers, from 0
    int pos_ = 0;            // index into live_; -1 BOF, live_.size() EOF
    bool on_deleted_ = false;

    Mode mode_ = Mode::None;
    QByteArray edit_buf_;
    int edit_record_ = -1;
    bool record_locked_ = false;  // edit_record_'s lock is held
    DbfError::Code pending_error_ = DbfError::None;
    QString pending_detail_;

    void mark_dirty(int record);
    bool batch_ = false;
    int batch_base_ = 0;                      // the record count when the batch began
    int dirty_first_ = -1, dirty_last_ = -1;  // records changed in the batch, below batch_base_

    mutable DbfError error_;
};

// A stored field's text as the table reads it, in the table's own
// single-byte code: a character field up to its first NUL, a memo or other
// field whole. Gives its length, or -1 for Null, when every byte is blank.
// The whole-table walks read their mark fields through this, in place.
int stored_text_length(const char* p, int width, bool character);

// A template copied over a table, atomically; an existing spelling of the
// target, looked up ignoring case, is the one replaced. True when the copy
// was made.
bool copy_template_over(const QString& template_path, const QString& target_path);

// Gives `folder` a table from the templates beside the program: if
// `<table>.dbf` is missing and `<table>.org` is in `program_folder`, copies it
// to `<table>.dbf`; likewise `<table>.ort` to a missing `<table>.dbt`. Names
// are looked up ignoring case. Failures are passed over: the opener that
// follows reports a missing table.
void copy_table_templates(const QString& program_folder, const QString& folder,
                          const QString& table);

}  // namespace veldo
