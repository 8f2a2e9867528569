#pragma once
// Passwords on menu entries. Every entry of the three menus may carry a
// password of its own; a system password guards the setting of them. All of
// it lives in `veldo-house-passwords.txt` beside the program, a file that
// other programs of the family share with keys of their own prefix, so a
// rewrite keeps every row it read.
//
// File layout (quoted values, Windows-1252, CR LF):
//   line 1     "<system password, lower-cased, scrambled>"
//   line 2...  "<key in clear>","<password, lower-cased, scrambled>"

#include <QString>
#include <QStringList>
#include <optional>

namespace veldo {

struct RunState;
struct ShellContext;

inline const QString kPasswordFileName = QStringLiteral("veldo-house-passwords.txt");
// The system password while the file does not exist yet.
inline const QString kBuiltInSystemPassword = QStringLiteral("$ecure$key");

// Each character moves 128 codes up the Windows-1252 page. A character at
// code 128 or above (or one the page lacks) can't move: nullopt.
std::optional<QString> scramble_text(const QString& text);
// Each character moves 128 codes down. A character below code 128 (or one
// the page lacks) can't move: nullopt.
std::optional<QString> unscramble_text(const QString& text);

// The two hidden list boxes of the top menu, row by row: keys and their
// passwords in clear, in file order. All three menus load into the one pair.
struct PasswordLists {
    QStringList keys;
    QStringList passwords;

    // The first row whose key equals `key` exactly; -1 when there is none.
    int find(const QString& key) const;
    // The password of the first row with `key`; empty when there is none.
    QString password_of(const QString& key) const;
    void clear();
    int size() const { return int(keys.size()); }
};

// The password file in the program folder (the current folder when that is
// empty).
QString password_file_path(const RunState& run);

// Reads the password file, when it exists: line 1 into run.system_password,
// every further line appended as a row. Nothing is cleared first, so each
// menu load adds the file's rows once more; lookups still hit the first.
// Errors are passed over: an unreadable file changes nothing, a line whose
// password can't be unscrambled adds no row, a bad line 1 leaves
// run.system_password as it was. Returns false when the file is missing.
bool load_password_file(RunState& run, PasswordLists& lists);

// True when `key` has a row and its password is not blank once trimmed.
bool entry_is_protected(const PasswordLists& lists, const QString& key);

// The right mouse button on a menu entry: asks the system password, then
// the new password of entry `prefix` & `index` twice, and rewrites the
// file. Ends silently on a blank reply, with a beep on a wrong system
// password or two replies that differ, silently when a password holds a
// character that can't be scrambled or the file can't be written (the file
// and the lists then stay as they were loaded). One beep on success, the
// only case that returns true.
bool set_entry_password(ShellContext& ctx, PasswordLists& lists, const QString& prefix, int index,
                        const QString& entry_caption);

// The password step of choosing a menu entry: when run.menu_password_key is
// protected, clears run.menu_access_granted, shows the prompt modal and, if
// access was not granted, beeps and returns false. True when the entry may
// open.
bool ask_entry_password(ShellContext& ctx, const PasswordLists& lists);

// The password prompt `sk1_wagwoord`, shown modal by ask_entry_password.
//
// This version never grants access through the prompt: its OK step compares
// through a form reference that nothing sets and fails with "Object
// required", and the flag it would set (password_accepted) is not the one
// the menus test (menu_access_granted). An entry that holds a password is
// therefore closed to everyone; a later version would compare the typed text
// with the row of run.menu_password_key and set menu_access_granted on a
// match.
class PasswordPrompt {
public:
    explicit PasswordPrompt(ShellContext& ctx);

    // The form's caption and the label scr_wwd_txt.
    QString caption() const;
    QString scr_wwd_txt() const { return caption(); }
    // ww_program_beskrywing: the program description, which nothing fills.
    QString ww_program_beskrywing() const { return QString(); }

    // Form activation: nothing is accepted yet.
    void activate();
    // The OK button, or Enter in scr_wagwoord.
    void wagwoord_ok(const QString& typed);

    // True once the prompt has unloaded itself; the widget then closes.
    bool unloaded() const { return unloaded_; }

private:
    ShellContext& ctx_;
    bool unloaded_ = false;
};

}  // namespace veldo
