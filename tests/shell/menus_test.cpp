// The three menus: entries by mouse and key, passwords, the folder test.
#include <gtest/gtest.h>

#include <functional>

#include "shell/menus.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

using testing::write_bytes;

struct Menus : testing::ShellFixture {
    MenuScreen top{ctx, passwords, MenuKind::Top};
    MenuScreen book{ctx, passwords, MenuKind::Marks2};
    MenuScreen input{ctx, passwords, MenuKind::Marks1};
    QStringList notes;  // state along the way, as "name: value"
    void note(const QString& name, const QString& value) { notes << name + ": " + value; }
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

// Each row plays a user's steps on the menus; the golden file holds the
// notes taken along the way and what the user saw. That each load appends
// the password rows again is PasswordLoad's to pin.
TEST(Menus, EntriesOpenTheirScreensByMouseAndKey) {
    const struct {
        const char* why;
        std::function<void(Menus&)> steps;
    } rows[] = {
        {"the top menu opens the second level and names the entry; the name is cleared after the mark book "
         "menu opened by click, not by key",
         [](Menus& m) {
             m.top.load();
             for (const int entry : {1, 2}) {
                 m.top.punte_menu_click(entry);
                 m.note("entry " + m.run.menu_password_key, m.top.ops_stelsel);
             }
             m.top.key_press('2');
             m.note("key 2", m.top.ops_stelsel);
         }},
        {"keys four and five are swapped on the mark book menu; the password key follows the key", [](Menus& m) {
             m.book.load();
             m.book.punte_menu_click(4);
             m.note("click 4", m.run.menu_password_key);
             for (const QChar key : {'4', '5', '2'}) {
                 m.book.key_press(key);
                 m.note(QString("key ") + key, m.run.menu_password_key);
             }
         }},
        {"a folder without marks files is reported, the folder form shows and the screen still opens; the older "
         "control table alone will do; an empty data folder gives empty brackets",
         [](Menus& m) {
             m.run.data_folder = m.path("empty");
             QDir().mkpath(m.run.data_folder);
             m.input.punte_menu_click(3);
             write_bytes(m.path("empty/Exp_Control.dbf"), "x");
             m.note("with Exp_Control.dbf", m.input.data_folder_ok() ? "ok" : "refused");
             m.run.data_folder.clear();
             m.run.language_afrikaans = true;
             m.book.punte_menu_click(2);
         }},
        {"a protected entry is red, shows its hint under the mouse and asks the password", [](Menus& m) {
             m.dialogs.inputs << "$ecure$key" << "geheim" << "geheim";
             m.top.punte_menu_right_click(2);
             MenuScreen fresh(m.ctx, m.passwords, MenuKind::Top);
             fresh.load();
             m.note("colours", QString("%1 %2").arg(fresh.fore_colour(1)).arg(fresh.fore_colour(2)));
             fresh.punte_menu_mouse_move(2);
             m.note("hint over 2", fresh.password_show() ? "shown" : "hidden");
             fresh.form_mouse_move();
             m.note("hint off it", fresh.password_show() ? "shown" : "hidden");
             fresh.punte_menu_click(2);
         }},
        {"zero ends the run; exit of a second-level menu shows the top menu; the top exit ends the run",
         [](Menus& m) {
             m.input.key_press('0');
             m.note("after 0", m.screens.ended ? "ended" : "running");
             m.screens.ended = false;
             m.book.punte_exit_click();
             m.top.punte_exit_click();
         }},
        {"backup starts the vaults program only when it is there", [](Menus& m) {
             m.top.backup_click();
             m.note("user", m.run.active_user_key);
             write_bytes(m.path("Apps/VELDO-VAULTS/VELDO-VAULTS.EXE"), "pe");
             m.top.backup_click();
         }},
        {"help names the manual of the menu; the web button fails with the platform error", [](Menus& m) {
             m.input.help_pdf_click();
             m.note("manual", m.run.manual_file_name);
             m.run.language_afrikaans = true;
             m.book.help_pdf_click();
             m.note("manual", m.run.manual_file_name);
             m.top.www_call_click();
         }},
        {"a load writes the audit record and sets the labels; the folder keeps its spelling", [](Menus& m) {
             m.run.school_name = "HOëRSKOOL DIE KRANS";
             m.run.data_folder = "/skool/data";
             m.book.load();
             m.note("menu, user", QString("%1 %2").arg(m.run.active_menu).arg(m.run.active_user_key));
             m.note("labels", QStringList({m.book.ops_stelsel, m.book.ops_ops1, m.book.dir_disp(), m.run.data_folder,
                                           m.book.header.ops_datum, m.book.header.ops_tyd})
                                  .join(" | "));
             m.note("audit bytes",
                    QString::number(QFileInfo(m.path("ProgramData/KESTRALIN/Audit_Trail.txt")).size()));
         }},
    };
    QString outcome;
    for (const auto& r : rows) {
        Menus m;
        r.steps(m);
        outcome += QString("== %1\n").arg(r.why) + m.notes.join('\n') + '\n' + testing::transcript(m, m.screens);
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/menu_steps.txt"));
}

}  // namespace
}  // namespace veldo
