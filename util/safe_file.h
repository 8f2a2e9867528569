#pragma once
// Writes that replace a whole file go through a temporary file beside the
// target and a rename, so a crash or a full disk leaves the old file or the
// new one, never an empty or half-written one.

#include <QByteArray>
#include <QString>

namespace veldo {

// Replaces `path` with `bytes`. A target that exists but may not be written
// (a data set set read-only on purpose) is left alone and the call fails.
// On failure `error` gets a short reason from the operating system.
bool write_file_atomic(const QString& path, const QByteArray& bytes, QString* error = nullptr);

// Copies `from` over `to` in the same way. A missing or unreadable source
// fails and leaves `to` untouched.
bool copy_file_atomic(const QString& from, const QString& to, QString* error = nullptr);

}  // namespace veldo
