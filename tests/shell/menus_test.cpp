// The three menus: entries by mouse and key, passwords, the folder test; the
// audit record and foot labels of every screen; choosing the data folder.
#include <gtest/gtest.h>

#include "shell/change_folder.h"
#include "shell/form_header.h"
#include "shell/menus.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"
#include "util/text_helpers.h"

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

// The foot labels: the date, the time, the system in capitals, the web address.
TEST(Menus, LoadingWritesTheAuditRecordAndSetsTheLabels) {
    Menus m;
    m.run.school_name = "HOëRSKOOL DIE KRANS";
    m.run.data_folder = "/skool/data";
    m.run.os_product_name = "  Debian GNU/Linux 12 (bookworm) ";
    ASSERT_TRUE(m.book.load());
    const FormHeader& h = m.book.header;
    EXPECT_EQ(QStringList({QString::number(m.run.active_menu), m.run.active_user_key, m.book.ops_stelsel,
                           m.book.ops_ops1, m.book.dir_disp(), m.run.data_folder, h.ops_datum, h.ops_tyd,
                           h.prg_version, h.internet_version}),
              QStringList({"2", "marks", "MARK BOOK", "HOëRSKOOL DIE KRANS", "/SKOOL/DATA", "/skool/data",
                           "2026.11.23", "10:15:30", "DEBIAN GNU/LINUX 12 (BOOKWORM) ()", " (www.kestralin.co.za)"}));
    EXPECT_EQ(QFileInfo(m.path("ProgramData/KESTRALIN/Audit_Trail.txt")).size(), 258);
}

// The audit record every screen leaves.
struct FormHeaderTest : ::testing::Test, testing::ShellFixture {
    QString audit() const { return path("ProgramData/KESTRALIN/Audit_Trail.txt"); }
};

TEST_F(FormHeaderTest, AppendsA258ByteRecord) {
    ASSERT_TRUE(form_header(ctx, "PUNTEBOEK"));
    time = QTime(10, 16, 1);
    ASSERT_TRUE(form_header(ctx, "MARK BOOK"));
    const QByteArray raw = testing::read_bytes(audit());
    ASSERT_EQ(raw.size(), 2 * 258);
    RecordBuffer rec(&audit_record_layout());
    rec.set_bytes(raw.mid(258));
    EXPECT_DOUBLE_EQ(rec.date("date"), 46349.0);  // 2026-11-23
    EXPECT_EQ(QStringList({rec.text("user").trimmed(), rec.text("time"), rec.text("form").trimmed(),
                           rec.text("reserved")}),
              QStringList({get_login_name().left(50), "10:16:01  ", "MARK BOOK", QString(50, ' ')}));
    EXPECT_EQ(raw.mid(258 + 168, 90), QByteArray(90, ' '));
}

TEST_F(FormHeaderTest, APartialLastRecordIsWrittenOverByTheRoundedCount) {
    // 2.5 records round to 2 and 1.78 to 2: either way the new one is record 3.
    for (const int before : {258 * 2 + 129, 258 + 200}) {
        testing::write_bytes(audit(), QByteArray(before, 'x'));
        ASSERT_TRUE(form_header(ctx, "X"));
        EXPECT_EQ(testing::read_bytes(audit()).size(), 3 * 258) << before;
    }
    EXPECT_EQ(testing::read_bytes(audit()).mid(258, 200), QByteArray(200, 'x'));
}

TEST_F(FormHeaderTest, AnUnwritableFamilyFolderStopsTheLoad) {
    run.family_folder = path("missing/KESTRALIN");
    EXPECT_FALSE(form_header(ctx, "X"));
    EXPECT_EQ(dialogs.texts(), QStringList{"Path/File access error"});
}

// Reply by reply: the data folder after, where the picker started, whether
// the form stays (with its caption and hint) and the activity its close
// leaves, to the millisecond; then what the user saw and the files beside the
// program. "old" holds only the older control table.
TEST(ChangeFolder, APickedFolderIsRememberedOrRefusedButStaysPicked) {
    const struct {
        const char* why;
        QByteArray user_info;  // beside the program; empty: none
        const char* reply;     // below the drive; nullptr: a cancel
        bool afrikaans = false;
    } rows[] = {
        {"accepted and remembered with the other values kept; the trailing separator goes",
         "\"/old/folder\"\r\n\"PS\"\r\n\"FE\"\r\n", "data/"},
        {"a cancel empties the data folder and writes nothing; the picker starts on the remembered folder, trimmed",
         "\"  /skool/data  \"\r\n", nullptr},
        {"the older table alone is refused, in Afrikaans", "", "old", true},
        {"and in English", "", "old"},
    };
    QString outcome;
    for (const auto& r : rows) {
        testing::ShellFixture t;
        t.run.language_afrikaans = r.afrikaans;
        if (!r.user_info.isEmpty()) testing::write_bytes(t.run.program_folder + "/user_info.txt", r.user_info);
        testing::write_bytes(t.path("old/Exp_Control.dbf"), "x");
        if (r.reply) t.dialogs.folders << t.path(r.reply);
        ChangeFolder f(t.ctx);
        f.load();
        const QString form = f.is_loaded() ? "stays: " + f.caption() + ": " + f.refused_hint() : "goes";
        t.time = QTime(11, 0, 0, 500);
        if (f.is_loaded()) f.unload();
        outcome += QString("== %1\nfolder '%2', start '%3', activity %4, form %5\n")
                       .arg(r.why, t.run.data_folder, t.dialogs.folder_start)
                       .arg(t.run.last_activity, 0, 'f', 3)
                       .arg(form)
                       .replace(t.dir.path(), "<drive>") +
                   testing::transcript(t, t.screens, {"Apps"});
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/folder_choices.txt"));
}

}  // namespace
}  // namespace veldo
