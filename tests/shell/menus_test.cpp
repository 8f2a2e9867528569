// The three menus: entries by mouse and key, passwords, the folder test.
#include <gtest/gtest.h>

#include "shell/menus.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

struct Menus : testing::ShellFixture {
    MenuScreen top{ctx, passwords, MenuKind::Top};
    MenuScreen book{ctx, passwords, MenuKind::Marks2};
    MenuScreen input{ctx, passwords, MenuKind::Marks1};

    // What a step may change on menu `m` and in the run, item by item, and
    // what the user saw so far.
    QStringList state(const MenuScreen& m) const {
        return QStringList{"title " + m.ops_stelsel,
                           QString("colours %1 %2").arg(m.fore_colour(1)).arg(m.fore_colour(2)),
                           QString("hint %1").arg(m.password_show() ? "shown" : "hidden"),
                           "key " + run.menu_password_key, "manual " + run.manual_file_name,
                           "user " + run.active_user_key} +
               testing::transcript(*this, screens).split('\n', Qt::SkipEmptyParts);
    }
    // Plays steps such as "top:click:1" (menu, action, argument), each logged
    // with what it changed. Besides: "reply:x" queues an input reply,
    // "folder:x" makes the data folder x below the drive ("folder:" none),
    // "file:x" writes a file below the drive and "af" turns Afrikaans.
    QString play(const QString& steps) {
        QString log;
        for (const QString& step : steps.split(' ')) {
            const QStringList w = step.split(':');
            MenuScreen& m = w[0] == "top" ? top : w[0] == "book" ? book : input;
            const QStringList before = state(m);
            const QString action = w.value(1), arg = w.value(2);
            if (w[0] == "reply") dialogs.inputs << action;
            if (w[0] == "folder") QDir().mkpath(run.data_folder = action.isEmpty() ? "" : path(action));
            if (w[0] == "file") testing::write_bytes(path(action), "MZ");
            if (w[0] == "af") run.language_afrikaans = true;
            if (action == "load") m.load();
            if (action == "click") m.punte_menu_click(arg.toInt());
            if (action == "key") m.key_press(arg[0]);
            if (action == "right") m.punte_menu_right_click(arg.toInt());
            if (action == "move") m.punte_menu_mouse_move(arg.toInt());
            if (action == "off") m.form_mouse_move();
            if (action == "exit") m.punte_exit_click();
            if (action == "backup") m.backup_click();
            if (action == "help") m.help_pdf_click();
            if (action == "www") m.www_call_click();
            QStringList changed;
            for (const QString& item : state(m))
                if (!before.contains(item)) changed << item;
            log += step + " -> " + changed.join("; ") + '\n';
        }
        return log;
    }
};

// Every caption and tooltip of the three menus, in both languages.
TEST(MenuTexts, CaptionsAndTooltipsInBothLanguages) {
    Menus m;
    QString texts;
    for (const bool afrikaans : {false, true}) {
        m.run.language_afrikaans = afrikaans;
        m.run.data_folder = afrikaans ? "/skool/data" : "";
        for (const MenuScreen* s : {&m.top, &m.input, &m.book}) {
            texts += QString("== %1 %2\n").arg(menu_screen_name(s->kind()), afrikaans ? "af" : "en");
            for (const MenuEntry& e : menu_entries(s->kind()))
                texts += QString("%1 (key %2) %3 | %4\n").arg(e.index).arg(e.key).arg(s->caption(e.index),
                                                                                      s->tooltip(e.index));
            texts += QStringList{s->backup_caption(), s->data_folder_caption(), s->data_folder_tooltip(),
                                 s->timeout_caption(), s->system_menu_caption(), s->system_menu_tooltip(),
                                 s->help_caption(), s->password_show_text()}
                         .join(" | ") +
                     '\n';
        }
    }
    EXPECT_TRUE(testing::matches_golden(texts, "shell/menu_texts.txt"));
}

// A user's steps on the menus, each with what it changed. That each load
// appends the password rows again is PasswordLoad's to pin.
TEST(Menus, EntriesOpenTheirScreensByMouseAndKey) {
    const struct {
        const char *why, *steps;
    } rows[] = {
        {"the top menu opens the second level and names the entry; the name clears when the mark book menu "
         "opens by click, not by key",
         "top:load top:click:1 top:click:2 top:key:2"},
        {"keys four and five are swapped on the mark book menu",
         "book:load book:click:4 book:key:4 book:key:5 book:key:2"},
        {"a folder without marks files is reported and the folder form shows, yet the screen opens; the older "
         "control table alone will do",
         "folder:empty input:click:3 file:empty/Exp_Control.dbf input:click:3"},
        {"an empty data folder gives empty brackets", "folder: af book:click:2"},
        {"a protected entry is red, shows its hint under the mouse and asks the password",
         "reply:$ecure$key reply:geheim reply:geheim top:right:2 top:load top:move:2 top:off top:click:2"},
        {"zero ends the run", "input:key:0"},
        {"exit of a second-level menu shows the top menu; the top exit ends the run", "book:exit top:exit"},
        {"backup starts the vaults program only when it is there",
         "top:backup file:Apps/VELDO-VAULTS/VELDO-VAULTS.EXE top:backup"},
        {"help names the manual of the menu; the web button fails with the platform error",
         "input:help af book:help top:www"},
    };
    QString outcome;
    for (const auto& r : rows) outcome += QString("== %1\n").arg(r.why) + Menus().play(r.steps);
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/menu_steps.txt"));
}

TEST(Menus, LoadingWritesTheAuditRecordAndSetsTheLabels) {
    Menus m;
    m.run.school_name = "HOëRSKOOL DIE KRANS";
    m.run.data_folder = "/skool/data";
    ASSERT_TRUE(m.book.load());
    EXPECT_EQ(m.run.active_menu, 2);
    EXPECT_EQ(m.run.active_user_key, "marks");
    EXPECT_EQ(QStringList({m.book.ops_stelsel, m.book.ops_ops1, m.book.dir_disp(), m.run.data_folder,
                           m.book.header.ops_datum, m.book.header.ops_tyd}),
              QStringList({"MARK BOOK", "HOëRSKOOL DIE KRANS", "/SKOOL/DATA", "/skool/data", "2026.11.23",
                           "10:15:30"}));
    EXPECT_EQ(QFileInfo(m.path("ProgramData/KESTRALIN/Audit_Trail.txt")).size(), 258);
}

}  // namespace
}  // namespace veldo
