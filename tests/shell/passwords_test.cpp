// Passwords on menu entries: the scrambled file beside the program, the
// right-click flow that sets a password, and the prompt that guards an entry.
#include <gtest/gtest.h>

#include "shell/passwords.h"
#include "shell/screens.h"
#include "tests/support/fake_screens.h"
#include "tests/support/temp_drive.h"
#include "util/cp1252.h"

namespace veldo {
namespace {

using testing::FakeScreens;
using testing::read_bytes;
using testing::TempDrive;
using testing::write_bytes;

// A drive with the program folder and a context on a fake screen service.
struct PasswordDrive : TempDrive {
    QString program = path("Apps/VELDO-TALLY");
    FakeScreens screens;
    ShellContext ctx{run, *store, dialogs, screens, Clock{}};
    PasswordLists lists;

    PasswordDrive() {
        QDir().mkpath(program);
        run.program_folder = program;
    }
    QString file() const { return program + "/veldo-house-passwords.txt"; }
    bool set(const QString& prefix, int index, const QString& caption = "PUNTEBOEK") {
        return set_entry_password(ctx, lists, prefix, index, caption);
    }
};

// What the file holds for a text: each byte 128 up.
QByteArray scrambled(const QByteArray& clear) {
    QByteArray out = clear;
    for (char& c : out) c = char(static_cast<unsigned char>(c) + 128);
    return out;
}

QByteArray quoted(const QByteArray& item) { return '"' + item + '"'; }

QByteArray system_line(const QByteArray& password = "$ecure$key") { return quoted(scrambled(password)) + "\r\n"; }

QByteArray row_line(const QByteArray& key, const QByteArray& password) {
    return quoted(key) + ',' + quoted(scrambled(password)) + "\r\n";
}

TEST(PasswordScramble, MovesEachCodeByOneHundredAndTwentyEight) {
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
}

TEST(PasswordScramble, FailsOnCharactersThatCannotMove) {
    EXPECT_FALSE(scramble_text(QString::fromUtf8("café")).has_value());
    EXPECT_FALSE(scramble_text(QString::fromUtf8("€")).has_value());     // 0x80
    EXPECT_FALSE(scramble_text(QString::fromUtf8("\u4e2d")).has_value());  // not on the page
    EXPECT_FALSE(unscramble_text("abc").has_value());
    EXPECT_EQ(scramble_text(""), QString(""));
}

TEST(PasswordFile, FirstUseWithoutTheFileAcceptsTheBuiltInPassword) {
    PasswordDrive t;
    t.dialogs.inputs << "$ecure$key" << "geheim" << "geheim";
    EXPECT_TRUE(t.set("MARKS_MENU:", 2));
    EXPECT_EQ(t.dialogs.prompts, QStringList({"SYSTEM PASSWORD", "PASSWORD FOR \nPUNTEBOEK",
                                              "CONFIRM PASSWORD FOR \nPUNTEBOEK"}));
    EXPECT_EQ(t.dialogs.beeps, 1);
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(read_bytes(t.file()), system_line() + row_line("MARKS_MENU:2", "geheim"));
    EXPECT_EQ(t.lists.keys, QStringList({"MARKS_MENU:2"}));
    EXPECT_EQ(t.lists.passwords, QStringList({"geheim"}));
    EXPECT_TRUE(entry_is_protected(t.lists, "MARKS_MENU:2"));
}

TEST(PasswordFile, PromptsInAfrikaans) {
    PasswordDrive t;
    t.run.language_afrikaans = true;
    t.dialogs.inputs << "$ecure$key" << "x" << "x";
    EXPECT_TRUE(t.set("MARKS1_MENU:", 1, "INLEES PUNTE"));
    EXPECT_EQ(t.dialogs.prompts, QStringList({"STELSEL WAGWOORD", "WAGWOORD VIR \nINLEES PUNTE",
                                              "BEVESTIG WAGWOORD VIR \nINLEES PUNTE"}));
}

TEST(PasswordFile, FirstUseWithAWrongReplyLeavesTheOneLineFile) {
    PasswordDrive t;
    t.dialogs.inputs << "verkeerd";
    EXPECT_FALSE(t.set("MARKS_MENU:", 1));
    EXPECT_EQ(t.dialogs.beeps, 1);
    EXPECT_EQ(t.dialogs.prompts.size(), 1);
    EXPECT_EQ(read_bytes(t.file()), system_line());
}

TEST(PasswordFile, WrongSystemPasswordBeepsAndWritesNothing) {
    PasswordDrive t;
    const QByteArray before = system_line("baas") + row_line("MARKS_MENU:1", "een");
    write_bytes(t.file(), before);
    // The stored form is lower case, and the test is exact.
    for (const QString reply : {"BAAS", "baas ", "$ecure$key"}) {
        t.dialogs.inputs << reply;
        EXPECT_FALSE(t.set("MARKS_MENU:", 2));
    }
    EXPECT_EQ(t.dialogs.beeps, 3);
    EXPECT_EQ(t.dialogs.prompts.size(), 3);
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(read_bytes(t.file()), before);
    // The lists were read afresh from the file.
    EXPECT_EQ(t.lists.keys, QStringList({"MARKS_MENU:1"}));
    EXPECT_EQ(t.run.system_password, "baas");
}

TEST(PasswordFile, BlankReplyEndsSilently) {
    PasswordDrive t;
    t.lists.keys << "MARKS_MENU:1";
    t.lists.passwords << "een";
    t.dialogs.inputs << "   ";
    EXPECT_FALSE(t.set("MARKS_MENU:", 1));
    EXPECT_EQ(t.dialogs.beeps, 0);
    EXPECT_FALSE(QFileInfo::exists(t.file()));
    EXPECT_EQ(t.lists.size(), 1);
}

TEST(PasswordFile, ReloadDoesNotDoubleRows) {
    PasswordDrive t;
    write_bytes(t.file(), system_line() + row_line("MARKS_MENU:1", "een") + row_line("MARKS2_MENU:3", "drie"));
    // Each menu load appends the file once more.
    load_password_file(t.run, t.lists);
    load_password_file(t.run, t.lists);
    EXPECT_EQ(t.lists.size(), 4);
    t.dialogs.inputs << "$ecure$key" << "twee" << "twee";
    EXPECT_TRUE(t.set("MARKS1_MENU:", 2));
    EXPECT_EQ(t.lists.keys, QStringList({"MARKS_MENU:1", "MARKS2_MENU:3", "MARKS1_MENU:2"}));
    EXPECT_EQ(read_bytes(t.file()), system_line() + row_line("MARKS_MENU:1", "een") +
                                        row_line("MARKS2_MENU:3", "drie") + row_line("MARKS1_MENU:2", "twee"));
}

TEST(PasswordFile, RewriteKeepsOtherRowsAndReplacesInPlace) {
    PasswordDrive t;
    write_bytes(t.file(), system_line("baas") + row_line("HOUSE_MENU:4", "ander") +
                              row_line("MARKS2_MENU:2", "oud") + row_line("MARKS_MENU:1", "een"));
    t.dialogs.inputs << "baas" << "Nuut" << "Nuut";
    EXPECT_TRUE(t.set("MARKS2_MENU:", 2));
    // Lower-cased in the file, as typed in the list until the next load.
    EXPECT_EQ(read_bytes(t.file()), system_line("baas") + row_line("HOUSE_MENU:4", "ander") +
                                        row_line("MARKS2_MENU:2", "nuut") + row_line("MARKS_MENU:1", "een"));
    EXPECT_EQ(t.lists.password_of("MARKS2_MENU:2"), "Nuut");
    EXPECT_EQ(t.dialogs.beeps, 1);
}

TEST(PasswordFile, BlankPasswordKeepsTheRowAndUnprotects) {
    PasswordDrive t;
    write_bytes(t.file(), system_line() + row_line("MARKS_MENU:2", "geheim"));
    load_password_file(t.run, t.lists);
    EXPECT_TRUE(entry_is_protected(t.lists, "MARKS_MENU:2"));
    t.dialogs.inputs << "$ecure$key" << "   " << "";
    EXPECT_TRUE(t.set("MARKS_MENU:", 2));
    EXPECT_EQ(read_bytes(t.file()), system_line() + row_line("MARKS_MENU:2", "   "));
    EXPECT_EQ(read_bytes(t.file()).right(7), QByteArray("\"\xA0\xA0\xA0\"\r\n"));
    EXPECT_FALSE(entry_is_protected(t.lists, "MARKS_MENU:2"));
    PasswordLists fresh;
    load_password_file(t.run, fresh);
    EXPECT_EQ(fresh.find("MARKS_MENU:2"), 0);
    EXPECT_FALSE(entry_is_protected(fresh, "MARKS_MENU:2"));
}

TEST(PasswordFile, RepliesThatDifferBeepAndStop) {
    PasswordDrive t;
    write_bytes(t.file(), system_line());
    t.dialogs.inputs << "$ecure$key" << "een" << "twee";
    EXPECT_FALSE(t.set("MARKS_MENU:", 1));
    EXPECT_EQ(t.dialogs.beeps, 1);
    EXPECT_EQ(read_bytes(t.file()), system_line());
    EXPECT_EQ(t.lists.size(), 0);
}

TEST(PasswordFile, RepliesAreComparedTrimmedAndStoredAsTyped) {
    PasswordDrive t;
    t.dialogs.inputs << "$ecure$key" << " abc" << "abc ";
    EXPECT_TRUE(t.set("MARKS_MENU:", 1));
    EXPECT_EQ(read_bytes(t.file()), system_line() + row_line("MARKS_MENU:1", " abc"));
}

TEST(PasswordFile, AnAccentedPasswordEndsTheStepSilently) {
    PasswordDrive t;
    write_bytes(t.file(), system_line() + row_line("MARKS_MENU:1", "een"));
    t.dialogs.inputs << "$ecure$key" << QString::fromUtf8("café") << QString::fromUtf8("café");
    EXPECT_FALSE(t.set("MARKS_MENU:", 2));
    EXPECT_EQ(t.dialogs.beeps, 0);
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
    EXPECT_EQ(read_bytes(t.file()), system_line() + row_line("MARKS_MENU:1", "een"));
    EXPECT_EQ(t.lists.keys, QStringList({"MARKS_MENU:1"}));
}

TEST(PasswordFile, FoundWhateverTheCaseOfItsName) {
    PasswordDrive t;
    const QString other = t.program + "/Veldo-House-Passwords.TXT";
    write_bytes(other, system_line("baas"));
    t.dialogs.inputs << "baas" << "x" << "x";
    EXPECT_TRUE(t.set("MARKS_MENU:", 1));
    EXPECT_EQ(read_bytes(other), system_line("baas") + row_line("MARKS_MENU:1", "x"));
    EXPECT_FALSE(QFileInfo::exists(t.file()));
}

TEST(PasswordLoad, AppendsRowsAndSetsTheSystemPassword) {
    PasswordDrive t;
    t.run.system_password = "voor";
    EXPECT_FALSE(load_password_file(t.run, t.lists));
    EXPECT_EQ(t.run.system_password, "voor");
    EXPECT_EQ(t.lists.size(), 0);

    write_bytes(t.file(), system_line("baas") + row_line("MARKS_MENU:1", "een") + row_line("MARKS_MENU:1", "ander"));
    EXPECT_TRUE(load_password_file(t.run, t.lists));
    EXPECT_EQ(t.run.system_password, "baas");
    EXPECT_EQ(t.lists.keys, QStringList({"MARKS_MENU:1", "MARKS_MENU:1"}));
    EXPECT_EQ(t.lists.password_of("MARKS_MENU:1"), "een");  // the first row wins
    EXPECT_EQ(t.lists.find("marks_menu:1"), -1);            // keys match exactly
    load_password_file(t.run, t.lists);
    EXPECT_EQ(t.lists.size(), 4);
}

TEST(PasswordLoad, PassesOverBadLines) {
    PasswordDrive t;
    t.run.system_password = "voor";
    // Line 1 in clear can't be unscrambled; a row in clear is left out whole,
    // a line with one item too.
    write_bytes(t.file(), QByteArray("\"plain\"\r\n") + row_line("MARKS_MENU:1", "een") +
                              "\"MARKS_MENU:2\",\"clear\"\r\n\"MARKS_MENU:3\"\r\n\r\n" +
                              row_line("MARKS_MENU:4", "vier"));
    EXPECT_TRUE(load_password_file(t.run, t.lists));
    EXPECT_EQ(t.run.system_password, "voor");
    EXPECT_EQ(t.lists.keys, QStringList({"MARKS_MENU:1", "MARKS_MENU:4"}));
    EXPECT_EQ(t.lists.passwords, QStringList({"een", "vier"}));
}

TEST(PasswordLoad, EmptyFileChangesNothing) {
    PasswordDrive t;
    t.run.system_password = "voor";
    write_bytes(t.file(), "");
    EXPECT_TRUE(load_password_file(t.run, t.lists));
    EXPECT_EQ(t.run.system_password, "voor");
    EXPECT_EQ(t.lists.size(), 0);
}

TEST(PasswordAccess, ProtectedOnlyByANonBlankPasswordOfTheFirstRow) {
    PasswordLists lists;
    lists.keys << "MARKS_MENU:1" << "MARKS_MENU:2" << "MARKS_MENU:2" << "MARKS_MENU:3";
    lists.passwords << "een" << "  " << "twee" << "";
    EXPECT_TRUE(entry_is_protected(lists, "MARKS_MENU:1"));
    EXPECT_FALSE(entry_is_protected(lists, "MARKS_MENU:2"));
    EXPECT_FALSE(entry_is_protected(lists, "MARKS_MENU:3"));
    EXPECT_FALSE(entry_is_protected(lists, "MARKS_MENU:4"));
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
