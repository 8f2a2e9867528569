// Passwords on menu entries: the scrambled file beside the program, the
// right-click flow that sets a password, and the prompt that guards an entry.
#include <gtest/gtest.h>

#include <optional>

#include "shell/passwords.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"
#include "util/cp1252.h"

namespace veldo {
namespace {

using testing::transcript;
using testing::write_bytes;

struct PasswordDrive : testing::ShellFixture {
    PasswordLists& lists = passwords;
    QString file() const { return run.program_folder + "/veldo-house-passwords.txt"; }
    // The lists as "key=password" pairs.
    QStringList rows() const {
        QStringList out;
        for (qsizetype i = 0; i < lists.keys.size(); ++i) out << lists.keys[i] + "=" + lists.passwords.value(i);
        return out;
    }
};

// What the file holds for a text: each byte 128 up.
QByteArray scrambled(const QByteArray& clear) {
    QByteArray out = clear;
    for (char& c : out) c = char(static_cast<unsigned char>(c) + 128);
    return out;
}

QByteArray system_line(const QByteArray& password = "$ecure$key") { return '"' + scrambled(password) + "\"\r\n"; }

QByteArray row_line(const QByteArray& key, const QByteArray& password) {
    return '"' + key + "\",\"" + scrambled(password) + "\"\r\n";
}

TEST(PasswordScramble, MovesEachCodeByOneHundredAndTwentyEightOrFails) {
    const auto s = scramble_text("$ecure$key");
    ASSERT_TRUE(s.has_value());
    EXPECT_EQ(cp1252::encode(*s), scrambled("$ecure$key"));
    // Codes 1..31 land in the 0x80 block, including its unassigned codes.
    const auto low = scramble_text(QString(QChar(0x01)) + QChar(0x0D) + QChar(0x1D));
    ASSERT_TRUE(low.has_value());
    EXPECT_EQ(cp1252::encode(*low), QByteArray("\x81\x8D\x9D"));
    QString all;
    for (int c = 0; c < 128; ++c) all.append(QChar(c));
    EXPECT_EQ(unscramble_text(*scramble_text(all)), all);
    EXPECT_EQ(scramble_text(""), QString(""));

    // Off the 7-bit page: an accent, the euro at 0x80, a letter not on the page.
    for (const char* outside : {"café", "€", "\u4e2d"})
        EXPECT_FALSE(scramble_text(QString::fromUtf8(outside))) << outside;
    EXPECT_FALSE(unscramble_text("abc").has_value());
}

// The right click on an entry, reply by reply: the prompts, beeps and file
// written, the system password and the lists after. The lists hold a stale
// row before: the step starts again from the file, so it never doubles rows.
TEST(PasswordFile, SettingAPasswordAsksChecksAndRewritesTheFile) {
    const QByteArray baas = system_line("baas") + row_line("MARKS_MENU:1", "een");
    const QByteArray house = system_line("baas") + row_line("HOUSE_MENU:4", "ander");
    const struct {
        std::optional<QByteArray> before;  // nullopt: no file
        QString key;                       // prefix and index
        QStringList replies;
        const char* why;
        bool afrikaans = false;
        const char* file = "veldo-house-passwords.txt";
    } rows[] = {
        {std::nullopt, "MARKS_MENU:2", {"$ecure$key", "geheim", "geheim"},
         "first use without the file accepts the built-in password"},
        {std::nullopt, "MARKS_MENU:1", {"verkeerd"}, "first use with a wrong reply leaves the one-line file"},
        {baas, "MARKS_MENU:2", {"BAAS"}, "the stored form is lower case and the test is exact"},
        {baas, "MARKS_MENU:2", {"baas "}, "not trimmed"},
        {baas, "MARKS_MENU:2", {"$ecure$key"}, "the built-in password no longer counts"},
        {std::nullopt, "MARKS_MENU:1", {"   "}, "a blank reply ends silently"},
        {system_line() + row_line("MARKS_MENU:1", "een") + row_line("MARKS2_MENU:3", "drie"), "MARKS1_MENU:2",
         {"$ecure$key", "twee", "twee"}, "a new row goes last"},
        {house + row_line("MARKS2_MENU:2", "oud") + row_line("MARKS_MENU:1", "een"), "MARKS2_MENU:2",
         {"baas", "Nuut", "Nuut"}, "other rows are kept and the row replaced in place, lower-cased in the file only"},
        {system_line() + row_line("MARKS_MENU:2", "geheim"), "MARKS_MENU:2", {"$ecure$key", "   ", ""},
         "a blank password keeps its row"},
        {system_line(), "MARKS_MENU:1", {"$ecure$key", "een", "twee"}, "replies that differ beep and stop"},
        {std::nullopt, "MARKS_MENU:1", {"$ecure$key", " abc", "abc "}, "replies are compared trimmed, stored as typed"},
        {baas, "MARKS_MENU:2", {"baas", QString::fromUtf8("café"), QString::fromUtf8("café")},
         "an accented password ends the step silently"},
        {system_line("baas"), "MARKS1_MENU:1", {"baas", "x", "x"}, "prompts in Afrikaans and a file of any case", true,
         "Veldo-House-Passwords.TXT"},
    };
    QString outcome;
    for (const auto& r : rows) {
        PasswordDrive t;
        t.run.language_afrikaans = r.afrikaans;
        if (r.before) write_bytes(t.run.program_folder + "/" + r.file, *r.before);
        t.lists.keys << "STALE:1";
        t.lists.passwords << "oud";
        t.dialogs.inputs << r.replies;
        const bool set = set_entry_password(t.ctx, t.lists, r.key.chopped(1), r.key.right(1).toInt(), "PUNTEBOEK");
        outcome += QString("== %1\nset %2, protected %3, system '%4', rows %5\n")
                       .arg(r.why)
                       .arg(set)
                       .arg(entry_is_protected(t.lists, r.key))
                       .arg(t.run.system_password, t.rows().join(' ')) +
                   transcript(t, t.screens, {"Apps"});
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/password_setting.txt"));
}

// Each load appends the file's rows once more; line 1 sets the system
// password when it unscrambles. After two loads: whether each found the file,
// the system password and the rows, then for entries 1 to 4 the password of
// the first row of that key, exactly as spelt, and whether it protects.
TEST(PasswordLoad, AppendsRowsAndSetsTheSystemPassword) {
    const struct {
        std::optional<QByteArray> bytes;
        const char* why;
    } rows[] = {
        {std::nullopt, "no file"},
        {"", "an empty file changes nothing"},
        {system_line("baas") + row_line("MARKS_MENU:1", "een") + row_line("MARKS_MENU:1", "ander"),
         "rows in file order, doubles too"},
        {QByteArray("\"plain\"\r\n") + row_line("MARKS_MENU:1", "een") +
             "\"MARKS_MENU:2\",\"clear\"\r\n\"MARKS_MENU:3\"\r\n\r\n" + row_line("MARKS_MENU:4", "vier"),
         "line 1 in clear can't be unscrambled; a row in clear is left out whole, a line with one item too"},
        {system_line() + row_line("marks_menu:1", "klein") + row_line("MARKS_MENU:2", "  ") +
             row_line("MARKS_MENU:2", "twee") + row_line("MARKS_MENU:3", ""),
         "only the first row of the exact key counts, and only when not blank"},
    };
    QString outcome;
    for (const auto& r : rows) {
        PasswordDrive t;
        t.run.system_password = "voor";
        if (r.bytes) write_bytes(t.file(), *r.bytes);
        const bool first = load_password_file(t.run, t.lists);
        outcome += QString("== %1\nfound %2 %3, system '%4', rows %5\n")
                       .arg(r.why)
                       .arg(first)
                       .arg(load_password_file(t.run, t.lists))
                       .arg(t.run.system_password, t.rows().join(' '));
        for (const QString key : {"MARKS_MENU:1", "MARKS_MENU:2", "MARKS_MENU:3", "MARKS_MENU:4"})
            outcome += QString("%1 '%2'%3\n").arg(key, t.lists.password_of(key),
                                                   entry_is_protected(t.lists, key) ? " protected" : "");
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/password_loads.txt"));
}

// An open entry asks nothing: Menus.EntriesOpenTheirScreensByMouseAndKey
// opens its screens without a prompt, and a blank password leaves an entry
// open above. The prompt for a protected entry never lets anyone in.
TEST(PasswordAccess, AProtectedEntryIsClosedToEveryone) {
    PasswordDrive t;
    t.lists.keys << "MARKS2_MENU:4";
    t.lists.passwords << "geheim";
    t.run.menu_password_key = "MARKS2_MENU:4";
    t.run.menu_access_granted = true;
    t.run.password_accepted = true;  // the prompt's activation clears it
    // The user types the right password in the prompt.
    PasswordPrompt prompt(t.ctx);
    t.screens.modal_handlers.insert(screen::sk1_wagwoord, [&] {
        prompt.activate();
        prompt.wagwoord_ok("geheim");
    });
    EXPECT_FALSE(ask_entry_password(t.ctx, t.lists));
    EXPECT_EQ(transcript(t, t.screens), "message Critical Ok []: Object required\nbeeps: 1\nmodal: sk1_wagwoord\n");
    EXPECT_FALSE(t.run.menu_access_granted);
    EXPECT_FALSE(t.run.password_accepted);
    EXPECT_TRUE(prompt.unloaded());
    prompt.activate();
    EXPECT_FALSE(prompt.unloaded());
}

}  // namespace
}  // namespace veldo
