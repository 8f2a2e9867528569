#pragma once
// The one open file behind a table, and the byte-range locks that
// workstations on a shared drive take on it. Reads and writes are positioned
// (no seek of their own), so a walk, an edit or an append costs one call to
// the operating system each. This is the only file that speaks to the
// operating system about tables: another platform is another file.

#include <QByteArray>
#include <QString>

namespace veldo {

class TableFile {
public:
    TableFile() = default;
    ~TableFile() { close(); }
    TableFile(const TableFile&) = delete;
    TableFile& operator=(const TableFile&) = delete;

    // Opens `path` for reading, and for writing when `writable`. False when
    // the system refuses (missing, a folder, no permission).
    bool open(const QString& path, bool writable);
    void close();
    bool is_open() const { return fd_ >= 0; }

    // The whole file in one read, into `out`'s own memory where it has room;
    // false when it can't be read (then `out` holds part of it).
    bool read_all(QByteArray* out) const;
    // The file's size now; -1 when it can't be had.
    qint64 size() const;
    // Exactly `length` bytes at `offset`; false on a short read or a failure.
    bool read_at(qint64 offset, char* data, qint64 length) const;
    // All of `length` bytes at `offset`; false when the disk took less (a
    // full disk, a file size limit, a vanished share).
    bool write_at(qint64 offset, const char* data, qint64 length);

    // True when `path` no longer names the file that is open: another
    // workstation put a new file in its place (a rebuild), or removed it.
    bool replaced(const QString& path) const;

    // Byte-range locks, as other dBASE programs take them on a shared drive.
    // They belong to this open file: two tables open on one file in one
    // process keep each other out as two workstations do. A lock is tried
    // until `wait_ms` have passed; false when it is still held elsewhere.
    enum class LockKind { Shared, Exclusive };
    bool lock(qint64 offset, qint64 length, LockKind kind, int wait_ms);
    void unlock(qint64 offset, qint64 length);

private:
    int fd_ = -1;
};

}  // namespace veldo
