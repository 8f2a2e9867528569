#include "shell/passwords.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "shell/screens.h"
#include "store/run_state.h"
#include "util/cp1252.h"
#include "util/file_lookup.h"
#include "util/quoted_values.h"
#include "util/safe_file.h"
#include "util/user_dialogs.h"

namespace veldo {
namespace {

// Moves every character `shift` codes along the Windows-1252 page, or fails
// when one would leave the page's 0..255.
std::optional<QString> shift_text(const QString& text, int shift) {
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        const int code = cp1252::code_of(c);
        if (code < 0) return std::nullopt;
        const int moved = code + shift;
        if (moved < 0 || moved > 255) return std::nullopt;
        out.append(cp1252::char_of(static_cast<unsigned char>(moved)));
    }
    return out;
}

std::optional<QByteArray> read_file(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return std::nullopt;
    return f.readAll();
}

QString first_text(const QuotedLine& line, int i) { return i < line.size() ? line.at(i).as_text() : QString(); }

// The whole file from the lists: line 1 the system password, then a line a
// row. Fails when a password can't be scrambled.
std::optional<QByteArray> password_file_bytes(const QString& system_password, const PasswordLists& lists) {
    QList<QuotedLine> lines;
    const auto system = scramble_text(system_password.toLower());
    if (!system) return std::nullopt;
    lines.append({QuotedValue::of_text(*system)});
    for (int i = 0; i < lists.size(); ++i) {
        const auto password = scramble_text(lists.passwords.value(i).toLower());
        if (!password) return std::nullopt;
        lines.append({QuotedValue::of_text(lists.keys.at(i)), QuotedValue::of_text(*password)});
    }
    return write_quoted_lines(lines);
}

}  // namespace

std::optional<QString> scramble_text(const QString& text) { return shift_text(text, 128); }

std::optional<QString> unscramble_text(const QString& text) { return shift_text(text, -128); }

int PasswordLists::find(const QString& key) const { return int(keys.indexOf(key)); }

QString PasswordLists::password_of(const QString& key) const {
    const int i = find(key);
    return i < 0 ? QString() : passwords.value(i);
}

void PasswordLists::clear() {
    keys.clear();
    passwords.clear();
}

QString password_file_path(const RunState& run) {
    const QString folder = run.program_folder.trimmed().isEmpty() ? QDir::currentPath() : run.program_folder;
    return path_ignoring_case(folder, kPasswordFileName);
}

bool load_password_file(RunState& run, PasswordLists& lists) {
    const QString path = password_file_path(run);
    if (!QFileInfo::exists(path)) return false;
    const auto bytes = read_file(path);
    if (!bytes) return true;
    const QList<QuotedLine> lines = read_quoted_lines(*bytes);
    if (lines.isEmpty()) return true;
    if (!lines.first().isEmpty())
        if (const auto system = unscramble_text(first_text(lines.first(), 0))) run.system_password = *system;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QuotedLine& line = lines.at(i);
        if (line.size() < 2) continue;
        // A row whose password can't be read is left out whole, so keys and
        // passwords stay row by row.
        const auto password = unscramble_text(first_text(line, 1));
        if (!password) continue;
        lists.keys.append(first_text(line, 0));
        lists.passwords.append(*password);
    }
    return true;
}

bool entry_is_protected(const PasswordLists& lists, const QString& key) {
    const int i = lists.find(key);
    return i >= 0 && !lists.passwords.value(i).trimmed().isEmpty();
}

bool set_entry_password(ShellContext& ctx, PasswordLists& lists, const QString& prefix, int index,
                        const QString& entry_caption) {
    RunState& run = ctx.run;
    UserDialogs& dialogs = ctx.dialogs;

    const QString reply = dialogs.input(run.tr("STELSEL WAGWOORD", "SYSTEM PASSWORD"));
    if (reply.trimmed().isEmpty()) return false;

    // Start again from the file, so this step never doubles its rows.
    lists.clear();
    run.system_password = kBuiltInSystemPassword;
    const QString path = password_file_path(run);
    if (!QFileInfo::exists(path)) {
        if (const auto bytes = password_file_bytes(run.system_password, PasswordLists{}))
            write_file_atomic(path, *bytes);
    } else {
        load_password_file(run, lists);
    }

    // Exact: the stored form is lower case, so the reply must be typed so.
    if (reply != run.system_password) {
        dialogs.beep();
        return false;
    }

    const QString first =
        dialogs.input(run.tr("WAGWOORD VIR ", "PASSWORD FOR ") + QLatin1Char('\n') + entry_caption);
    const QString second =
        dialogs.input(run.tr("BEVESTIG WAGWOORD VIR ", "CONFIRM PASSWORD FOR ") + QLatin1Char('\n') + entry_caption);
    if (first.trimmed() != second.trimmed()) {
        dialogs.beep();
        return false;
    }

    // A blank password is kept as typed: it stays in the file and leaves the
    // entry open, since only a non-blank password guards it.
    PasswordLists updated = lists;
    const QString key = prefix + QString::number(index);
    const int row = updated.find(key);
    if (row < 0) {
        updated.keys.append(key);
        updated.passwords.append(first);
    } else {
        updated.passwords[row] = first;
    }

    const auto bytes = password_file_bytes(run.system_password, updated);
    if (!bytes) return false;  // a character that can't be scrambled
    if (!write_file_atomic(path, *bytes)) return false;
    lists = updated;
    dialogs.beep();
    return true;
}

bool ask_entry_password(ShellContext& ctx, const PasswordLists& lists) {
    RunState& run = ctx.run;
    if (!entry_is_protected(lists, run.menu_password_key)) return true;
    run.menu_access_granted = false;
    ctx.screens.show_modal(screen::sk1_wagwoord);
    if (!run.menu_access_granted) {
        ctx.dialogs.beep();
        return false;
    }
    return true;
}

PasswordPrompt::PasswordPrompt(ShellContext& ctx) : ctx_(ctx) {}

QString PasswordPrompt::caption() const { return ctx_.run.tr("WAGWOORD", "PASSWORD"); }

void PasswordPrompt::activate() {
    ctx_.run.password_accepted = false;
    unloaded_ = false;
}

void PasswordPrompt::wagwoord_ok(const QString& typed) {
    Q_UNUSED(typed);
    // The comparison goes through a form reference nothing sets: the platform
    // error stops the step before anything is compared or granted.
    ctx_.dialogs.message(QStringLiteral("Object required"), MsgIcon::Critical);
    unloaded_ = true;
}

}  // namespace veldo
