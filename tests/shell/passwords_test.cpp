// Passwords on menu entries: the scrambled file beside the program, the
// right-click flow that sets a password, and the prompt that guards an entry.
#include <gtest/gtest.h>

#include <optional>

#include "shell/passwords.h"
#include "tests/support/shell_fixture.h"
#include "util/cp1252.h"

namespace veldo {
namespace {

using testing::read_bytes;
using testing::write_bytes;

struct PasswordDrive : testing::ShellFixture {
    PasswordLists& lists = passwords;
    QString program = run.program_folder;
    QString file() const { return program + "/veldo-house-passwords.txt"; }
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
    EXPECT_EQ(unscramble_text(*s), QString("$ecure$key"));
    // Codes 1..31 land in the 0x80 block, including its unassigned codes.
    const auto low = scramble_text(QString(QChar(0x01)) + QChar(0x0D) + QChar(0x1D));
    ASSERT_TRUE(low.has_value());
    EXPECT_EQ(cp1252::encode(*low), QByteArray("\x81\x8D\x9D"));
    QString all;
    for (int c = 0; c < 128; ++c) all.append(QChar(c));
    EXPECT_EQ(unscramble_text(*scramble_text(all)), all);
    EXPECT_EQ(scramble_text(""), QString(""));

    EXPECT_FALSE(scramble_text(QString::fromUtf8("café")).has_value());
    EXPECT_FALSE(scramble_text(QString::fromUtf8("€")).has_value());       // 0x80
    EXPECT_FALSE(scramble_text(QString::fromUtf8("\u4e2d")).has_value());  // not on the page
    EXPECT_FALSE(unscramble_text("abc").has_value());
}

// The right click on an entry, reply by reply. The lists hold a stale row
// before: the step starts again from the file, so it never doubles rows.
TEST(PasswordFile, SettingAPasswordAsksChecksAndRewritesTheFile) {
    const QByteArray baas = system_line("baas") + row_line("MARKS_MENU:1", "een");
    const QByteArray house = system_line("baas") + row_line("HOUSE_MENU:4", "ander");
    const struct {
        std::optional<QByteArray> before;  // nullopt: no file
        QString key;                       // prefix and index
        QStringList replies;
        bool set;
        int beeps;
        std::optional<QByteArray> after;
        const char* system;
        QStringList keys, passwords;
        const char* why;
    } rows[] = {
        {std::nullopt, "MARKS_MENU:2", {"$ecure$key", "geheim", "geheim"}, true, 1,
         system_line() + row_line("MARKS_MENU:2", "geheim"), "$ecure$key", {"MARKS_MENU:2"}, {"geheim"},
         "first use without the file accepts the built-in password"},
        {std::nullopt, "MARKS_MENU:1", {"verkeerd"}, false, 1, system_line(), "$ecure$key", {}, {},
         "first use with a wrong reply leaves the one-line file"},
        {baas, "MARKS_MENU:2", {"BAAS"}, false, 1, baas, "baas", {"MARKS_MENU:1"}, {"een"},
         "the stored form is lower case and the test is exact"},
        {baas, "MARKS_MENU:2", {"baas "}, false, 1, baas, "baas", {"MARKS_MENU:1"}, {"een"}, "not trimmed"},
        {baas, "MARKS_MENU:2", {"$ecure$key"}, false, 1, baas, "baas", {"MARKS_MENU:1"}, {"een"},
         "the built-in password no longer counts"},
        {std::nullopt, "MARKS_MENU:1", {"   "}, false, 0, std::nullopt, "", {"STALE:1"}, {"oud"},
         "a blank reply ends silently"},
        {system_line() + row_line("MARKS_MENU:1", "een") + row_line("MARKS2_MENU:3", "drie"), "MARKS1_MENU:2",
         {"$ecure$key", "twee", "twee"}, true, 1,
         system_line() + row_line("MARKS_MENU:1", "een") + row_line("MARKS2_MENU:3", "drie") +
             row_line("MARKS1_MENU:2", "twee"),
         "$ecure$key", {"MARKS_MENU:1", "MARKS2_MENU:3", "MARKS1_MENU:2"}, {"een", "drie", "twee"},
         "a new row goes last"},
        {house + row_line("MARKS2_MENU:2", "oud") + row_line("MARKS_MENU:1", "een"), "MARKS2_MENU:2",
         {"baas", "Nuut", "Nuut"}, true, 1,
         house + row_line("MARKS2_MENU:2", "nuut") + row_line("MARKS_MENU:1", "een"), "baas",
         {"HOUSE_MENU:4", "MARKS2_MENU:2", "MARKS_MENU:1"}, {"ander", "Nuut", "een"},
         "other rows are kept and the row replaced in place, lower-cased in the file only"},
        {system_line() + row_line("MARKS_MENU:2", "geheim"), "MARKS_MENU:2", {"$ecure$key", "   ", ""}, true, 1,
         system_line() + "\"MARKS_MENU:2\",\"\xA0\xA0\xA0\"\r\n", "$ecure$key", {"MARKS_MENU:2"}, {"   "},
         "a blank password keeps its row"},
        {system_line(), "MARKS_MENU:1", {"$ecure$key", "een", "twee"}, false, 1, system_line(), "$ecure$key", {}, {},
         "replies that differ beep and stop"},
        {std::nullopt, "MARKS_MENU:1", {"$ecure$key", " abc", "abc "}, true, 1,
         system_line() + row_line("MARKS_MENU:1", " abc"), "$ecure$key", {"MARKS_MENU:1"}, {" abc"},
         "replies are compared trimmed and stored as typed"},
        {baas, "MARKS_MENU:2", {"baas", QString::fromUtf8("café"), QString::fromUtf8("café")}, false, 0, baas, "baas",
         {"MARKS_MENU:1"}, {"een"}, "an accented password ends the step silently"},
    };
    const QStringList prompts{"SYSTEM PASSWORD", "PASSWORD FOR \nPUNTEBOEK", "CONFIRM PASSWORD FOR \nPUNTEBOEK"};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.why);
        PasswordDrive t;
        if (r.before) write_bytes(t.file(), *r.before);
        t.lists.keys << "STALE:1";
        t.lists.passwords << "oud";
        t.dialogs.inputs << r.replies;
        EXPECT_EQ(set_entry_password(t.ctx, t.lists, r.key.chopped(1), r.key.right(1).toInt(), "PUNTEBOEK"), r.set);
        EXPECT_EQ(t.dialogs.prompts, prompts.mid(0, r.replies.size()));
        EXPECT_EQ(t.dialogs.beeps, r.beeps);
        EXPECT_TRUE(t.dialogs.messages.isEmpty());
        if (r.after)
            EXPECT_EQ(read_bytes(t.file()), *r.after);
        else
            EXPECT_FALSE(QFileInfo::exists(t.file()));
        EXPECT_EQ(t.run.system_password, r.system);
        EXPECT_EQ(t.lists.keys, r.keys);
        EXPECT_EQ(t.lists.passwords, r.passwords);
        const auto row = r.keys.indexOf(r.key);
        EXPECT_EQ(entry_is_protected(t.lists, r.key), row >= 0 && !r.passwords[row].trimmed().isEmpty());
    }
}

TEST(PasswordFile, PromptsInAfrikaansAndAFileOfAnyCase) {
    PasswordDrive t;
    t.run.language_afrikaans = true;
    const QString other = t.program + "/Veldo-House-Passwords.TXT";
    write_bytes(other, system_line("baas"));
    t.dialogs.inputs << "baas" << "x" << "x";
    EXPECT_TRUE(set_entry_password(t.ctx, t.lists, "MARKS1_MENU:", 1, "INLEES PUNTE"));
    EXPECT_EQ(t.dialogs.prompts, QStringList({"STELSEL WAGWOORD", "WAGWOORD VIR \nINLEES PUNTE",
                                              "BEVESTIG WAGWOORD VIR \nINLEES PUNTE"}));
    EXPECT_EQ(read_bytes(other), system_line("baas") + row_line("MARKS1_MENU:1", "x"));
    EXPECT_FALSE(QFileInfo::exists(t.file()));
}

// Each load appends the file's rows once more; line 1 sets the system
// password when it unscrambles.
TEST(PasswordLoad, AppendsRowsAndSetsTheSystemPassword) {
    const struct {
        std::optional<QByteArray> bytes;
        bool found;
        const char* system;
        QStringList keys, passwords;
        const char* why;
    } rows[] = {
        {std::nullopt, false, "voor", {}, {}, "no file"},
        {"", true, "voor", {}, {}, "an empty file changes nothing"},
        {system_line("baas") + row_line("MARKS_MENU:1", "een") + row_line("MARKS_MENU:1", "ander"), true, "baas",
         {"MARKS_MENU:1", "MARKS_MENU:1"}, {"een", "ander"}, "rows in file order, doubles too"},
        // Line 1 in clear can't be unscrambled; a row in clear is left out
        // whole, a line with one item too.
        {QByteArray("\"plain\"\r\n") + row_line("MARKS_MENU:1", "een") +
             "\"MARKS_MENU:2\",\"clear\"\r\n\"MARKS_MENU:3\"\r\n\r\n" + row_line("MARKS_MENU:4", "vier"),
         true, "voor", {"MARKS_MENU:1", "MARKS_MENU:4"}, {"een", "vier"}, "bad lines are passed over"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.why);
        PasswordDrive t;
        t.run.system_password = "voor";
        if (r.bytes) write_bytes(t.file(), *r.bytes);
        EXPECT_EQ(load_password_file(t.run, t.lists), r.found);
        EXPECT_EQ(load_password_file(t.run, t.lists), r.found);
        EXPECT_EQ(t.run.system_password, r.system);
        EXPECT_EQ(t.lists.keys, r.keys + r.keys);
        EXPECT_EQ(t.lists.passwords, r.passwords + r.passwords);
    }
}

TEST(PasswordAccess, TheFirstRowOfTheExactKeyProtectsWhenNotBlank) {
    PasswordLists lists;
    lists.keys << "MARKS_MENU:1" << "MARKS_MENU:2" << "MARKS_MENU:2" << "MARKS_MENU:3";
    lists.passwords << "een" << "  " << "twee" << "";
    EXPECT_TRUE(entry_is_protected(lists, "MARKS_MENU:1"));
    EXPECT_FALSE(entry_is_protected(lists, "MARKS_MENU:2"));
    EXPECT_FALSE(entry_is_protected(lists, "MARKS_MENU:3"));
    EXPECT_FALSE(entry_is_protected(lists, "MARKS_MENU:4"));
    EXPECT_EQ(lists.password_of("MARKS_MENU:2"), "  ");
    EXPECT_EQ(lists.password_of("MARKS_MENU:4"), "");
    EXPECT_EQ(lists.find("marks_menu:1"), -1);
}

TEST(PasswordAccess, AnOpenEntryShowsNoPrompt) {
    PasswordDrive t;
    t.lists.keys << "MARKS_MENU:1";
    t.lists.passwords << " ";
    t.run.menu_access_granted = true;
    for (const QString key : {"MARKS_MENU:1", "MARKS_MENU:2"}) {
        t.run.menu_password_key = key;
        EXPECT_TRUE(ask_entry_password(t.ctx, t.lists));
    }
    EXPECT_TRUE(t.screens.modal.isEmpty());
    EXPECT_EQ(t.dialogs.beeps, 0);
    EXPECT_TRUE(t.run.menu_access_granted);
}

TEST(PasswordAccess, AProtectedEntryIsClosedToEveryone) {
    PasswordDrive t;
    t.lists.keys << "MARKS2_MENU:4";
    t.lists.passwords << "geheim";
    t.run.menu_password_key = "MARKS2_MENU:4";
    t.run.menu_access_granted = true;
    // The user types the right password in the prompt.
    PasswordPrompt prompt(t.ctx);
    t.screens.modal_handlers.insert(screen::sk1_wagwoord, [&] {
        prompt.activate();
        prompt.wagwoord_ok("geheim");
    });
    EXPECT_FALSE(ask_entry_password(t.ctx, t.lists));
    EXPECT_EQ(t.screens.modal, QStringList({screen::sk1_wagwoord}));
    ASSERT_EQ(t.dialogs.messages.size(), 1);
    EXPECT_EQ(t.dialogs.messages[0].text, "Object required");
    EXPECT_EQ(t.dialogs.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(t.dialogs.beeps, 1);
    EXPECT_FALSE(t.run.menu_access_granted);
    EXPECT_FALSE(t.run.password_accepted);
    EXPECT_TRUE(prompt.unloaded());
}

TEST(PasswordPrompt, CaptionsAndActivation) {
    PasswordDrive t;
    PasswordPrompt prompt(t.ctx);
    EXPECT_EQ(prompt.caption(), "PASSWORD");
    EXPECT_EQ(prompt.scr_wwd_txt(), "PASSWORD");
    EXPECT_EQ(prompt.ww_program_beskrywing(), "");
    t.run.language_afrikaans = true;
    EXPECT_EQ(prompt.caption(), "WAGWOORD");
    EXPECT_EQ(prompt.scr_wwd_txt(), "WAGWOORD");
    t.run.password_accepted = true;
    prompt.activate();
    EXPECT_FALSE(t.run.password_accepted);
    EXPECT_FALSE(prompt.unloaded());
}

}  // namespace
}  // namespace veldo
