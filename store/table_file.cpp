#include "store/table_file.h"

#include <QFile>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veldo {

bool TableFile::open(const QString& path, bool writable) {
    close();
    const QByteArray native = QFile::encodeName(path);
    const int fd = ::open(native.constData(), (writable ? O_RDWR : O_RDONLY) | O_CLOEXEC);
    if (fd < 0) return false;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return false;
    }
    fd_ = fd;
    return true;
}

void TableFile::close() {
    if (fd_ >= 0) ::close(fd_);  // closing also drops this file's locks
    fd_ = -1;
}

bool TableFile::read_all(QByteArray* out) const {
    struct stat st {};
    if (fd_ < 0 || ::fstat(fd_, &st) != 0) return false;
    out->resize(qsizetype(st.st_size));
    qint64 got = 0;
    while (got < st.st_size) {
        const ssize_t n = ::pread(fd_, out->data() + got, size_t(st.st_size - got), off_t(got));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0) break;  // cut short while we read: take what is there
        got += n;
    }
    out->truncate(qsizetype(got));
    return true;
}

qint64 TableFile::size() const {
    struct stat st {};
    if (fd_ < 0 || ::fstat(fd_, &st) != 0) return -1;
    return qint64(st.st_size);
}

bool TableFile::read_at(qint64 offset, char* data, qint64 length) const {
    if (fd_ < 0) return false;
    qint64 got = 0;
    while (got < length) {
        const ssize_t n = ::pread(fd_, data + got, size_t(length - got), off_t(offset + got));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        got += n;
    }
    return true;
}

bool TableFile::write_at(qint64 offset, const char* data, qint64 length) {
    if (fd_ < 0) return false;
    qint64 done = 0;
    while (done < length) {
        const ssize_t n = ::pwrite(fd_, data + done, size_t(length - done), off_t(offset + done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += n;
    }
    return true;
}

bool TableFile::replaced(const QString& path) const {
    struct stat mine {}, named {};
    if (fd_ < 0 || ::fstat(fd_, &mine) != 0) return true;
    if (::stat(QFile::encodeName(path).constData(), &named) != 0) return true;
    return mine.st_dev != named.st_dev || mine.st_ino != named.st_ino;
}

namespace {

bool set_lock(int fd, short type, qint64 offset, qint64 length, bool wait) {
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = off_t(offset);
    fl.l_len = off_t(length);
#ifdef F_OFD_SETLK
    const int cmd = wait ? F_OFD_SETLKW : F_OFD_SETLK;
#else
    const int cmd = wait ? F_SETLKW : F_SETLK;
#endif
    while (::fcntl(fd, cmd, &fl) != 0) {
        if (errno != EINTR) return false;
    }
    return true;
}

}  // namespace

bool TableFile::lock(qint64 offset, qint64 length, LockKind kind, int wait_ms) {
    if (fd_ < 0) return false;
    const short type = kind == LockKind::Exclusive ? F_WRLCK : F_RDLCK;
    // fcntl has no time limit of its own: try, then try again a little later.
    for (int waited = 0;; waited += 10) {
        if (set_lock(fd_, type, offset, length, false)) return true;
        if (errno != EAGAIN && errno != EACCES) {
            // A file system without byte-range locks (some old shares) must
            // not stop the school's work: go on as a single workstation.
            return errno == ENOLCK || errno == EINVAL || errno == EOPNOTSUPP;
        }
        if (waited >= wait_ms) return false;
        QThread::msleep(10);
    }
}

void TableFile::unlock(qint64 offset, qint64 length) {
    if (fd_ >= 0) set_lock(fd_, F_UNLCK, offset, length, false);
}

}  // namespace veldo
