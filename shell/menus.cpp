#include "shell/menus.h"

#include "shell/inactivity.h"
#include "shell/passwords.h"
#include "shell/screens.h"
#include "store/record_store.h"
#include "store/series.h"
#include "util/file_lookup.h"
#include "util/text_helpers.h"

#include <QDir>
#include <QFileInfo>

namespace veldo {

const QList<MenuEntry>& menu_entries(MenuKind kind) {
    static const QList<MenuEntry> top = {
        {1, '1', "SIKLUS/UGO", "CYCLE/OBE", "SIKLUS-/TOETS, DAS-/KTA PUNTE", "CYCLE/TEST, CASS/CTA MARKS",
         screen::punte_menu1},
        {2, '2', "PUNTEBOEK", "MARKS BOOK", "PUNTEBOEK", "MARKS BOOK", screen::punte_menu2},
    };
    static const QList<MenuEntry> marks1 = {
        {1, '1', "INLEES PUNTE", "INPUT MARKS", "INLEES van punte/persentasies", "INPUT of CASS/CTA marks/percentages",
         screen::punte_inlees},
        {2, '2', "INLEES ASSESSERING", "INPUT ASSESSMENT", "INLEES van UGO Assessering", "INPUT of OBE Assessment",
         screen::obe_inlees},
        {3, '3', "DRUK PUNTELYSTE", "PRINT MARK LISTS", "DRUK PUNTELYS(TE)", "PRINT MARK LIST(S)", screen::punte_druk},
    };
    // Buttons 4 and 5 answer to the keys "5" and "4".
    static const QList<MenuEntry> marks2 = {
        {1, '1', "PUNTEBOEK OPSTEL", "SETUP MARK BOOK", "OPSTEL van PUNTEBOEK", "SETUP of MARK BOOK",
         screen::pboek_opstel},
        {2, '2', "INLEES PUNTEBOEK", "INPUT MARKS BOOK", "INLEES van PUNTE", "INPUT of MARKS", screen::pboek_inlees},
        {3, '3', "DRUK PUNTELYSTE", "PRINT MARK LISTS", "DRUK PUNTELYSTE", "PRINT MARK LIST(S)", screen::pboek_druk},
        {4, '5', "SIMBOOLVERSPREIDING", "SYMBOL DISTRIBUTION", "DRUK SIMBOLVERSPREIDINGS VIR GEBRUIKTE REEKSE",
         "PRINT SYMBOL DISTRIBUTIONS FOR ALL USED SERIES", screen::simbole_druk},
        {5, '4', "UITVOER na ADMIN", "EXPORT to ADMIN", "UITVOER na ADMIN", "EXPORT to ADMIN", screen::pboek_uitvoer},
    };
    switch (kind) {
        case MenuKind::Top: return top;
        case MenuKind::Marks1: return marks1;
        case MenuKind::Marks2: return marks2;
    }
    return top;
}

QString menu_screen_name(MenuKind kind) {
    switch (kind) {
        case MenuKind::Top: return screen::punte_mnu;
        case MenuKind::Marks1: return screen::punte_menu1;
        case MenuKind::Marks2: return screen::punte_menu2;
    }
    return {};
}

QString menu_password_prefix(MenuKind kind) {
    switch (kind) {
        case MenuKind::Top: return "MARKS_MENU:";
        case MenuKind::Marks1: return "MARKS1_MENU:";
        case MenuKind::Marks2: return "MARKS2_MENU:";
    }
    return {};
}

MenuScreen::MenuScreen(ShellContext& ctx, PasswordLists& passwords, MenuKind kind)
    : ctx_(ctx), passwords_(passwords), kind_(kind) {}

const MenuEntry* MenuScreen::entry(int index) const {
    for (const MenuEntry& e : menu_entries(kind_))
        if (e.index == index) return &e;
    return nullptr;
}

QString MenuScreen::caption(int index) const {
    const MenuEntry* e = entry(index);
    return e ? ctx_.run.tr(e->caption_af, e->caption_en) : QString();
}

QString MenuScreen::tooltip(int index) const {
    const MenuEntry* e = entry(index);
    return e ? ctx_.run.tr(e->tip_af, e->tip_en) : QString();
}

int MenuScreen::fore_colour(int index) const {
    return index >= 1 && index <= colours_.size() ? colours_[index - 1] : 0;
}

QString MenuScreen::data_folder_tooltip() const {
    return ctx_.run.tr(" VERANDER DATA-FOLDER VAN " + ctx_.run.data_folder + " NA ... ",
                       " CHANGE DATA FOLDER FROM " + ctx_.run.data_folder + " TO ... ");
}
QString MenuScreen::backup_caption() const { return ctx_.run.tr("RUGSTEUN/HERWIN", "BACKUP/RESTORE"); }
QString MenuScreen::data_folder_caption() const { return ctx_.run.tr("DATA GIDS", "DATA FOLDER"); }
QString MenuScreen::timeout_caption() const { return ctx_.run.tr("TYDSDUUR", "TIME-OUT"); }
QString MenuScreen::system_menu_caption() const { return ctx_.run.tr("STELSEL", "SYSTEM"); }
QString MenuScreen::help_caption() const { return ctx_.run.tr("HULP", "HELP"); }
QString MenuScreen::password_show_text() const {
    return password_show_ ? ctx_.run.tr("WAGWOORD", "PASSWORD") : QString();
}
QString MenuScreen::system_menu_tooltip() const {
    return ctx_.run.tr(" Vertoon Stelselspyskaart ", " Display System Menu ");
}
// Shown in capitals; the folder itself keeps its spelling, since a
// case-sensitive file system would not find it in capitals.
QString MenuScreen::dir_disp() const { return upper_afrikaans_text(ctx_.run.data_folder); }

bool MenuScreen::load() {
    RunState& run = ctx_.run;
    if (kind_ != MenuKind::Top) {
        run.active_menu = kind_ == MenuKind::Marks1 ? 1 : 2;
        if (!run.data_folder.isEmpty() && !folder_exists(run.data_folder)) QDir().mkpath(run.data_folder);
        ops_subops.clear();
    }
    ops_ops1 = run.school_name;
    if (kind_ == MenuKind::Top && run.school_name == "VELDO-HOUSE") ops_ops1 = "VELDO-TALLY";
    const QString title = kind_ == MenuKind::Top    ? QStringLiteral("VELDO-TALLY")
                          : kind_ == MenuKind::Marks1 ? run.tr("SIKLUS-/TOETS, DAS-/KTA PUNTE", "CYCLE/TEST, CASS/CTA MARKS")
                                                      : run.tr("PUNTEBOEK", "MARK BOOK");
    if (!form_header(ctx_, title, &header)) return false;
    run.active_user_key = "marks";
    ops_stelsel = title;

    load_password_file(run, passwords_);
    colours_.clear();
    for (const MenuEntry& e : menu_entries(kind_))
        colours_.append(entry_is_protected(passwords_, menu_password_prefix(kind_) + QString::number(e.index)) ? 255 : 0);
    return true;
}

void MenuScreen::choose(int index, const MenuEntry* target, const QString& password_key) {
    Q_UNUSED(index);
    ctx_.run.menu_password_key = password_key;
    if (!ask_entry_password(ctx_, passwords_)) return;
    if (kind_ == MenuKind::Top) {
        ops_stelsel = ctx_.run.tr(target->tip_af, target->tip_en);
        ctx_.screens.show(target->opens);
        return;
    }
    if (data_folder_ok()) ctx_.screens.show(target->opens);
}

void MenuScreen::punte_menu_click(int index) {
    const MenuEntry* target = entry(index);
    if (!target) return;
    choose(index, target, menu_password_prefix(kind_) + QString::number(index));
    if (kind_ == MenuKind::Top && target->opens == screen::punte_menu2) ops_stelsel.clear();
}

void MenuScreen::key_press(QChar key) {
    // Typing on the second-level menus counts as activity; on the top menu only
    // the mouse does.
    if (kind_ != MenuKind::Top) reset_activity(ctx_.run, ctx_.clock);
    if (key == '0') {
        ctx_.screens.end_program();
        return;
    }
    for (const MenuEntry& e : menu_entries(kind_))
        if (e.key == key) choose(e.index, &e, menu_password_prefix(kind_) + key);
}

void MenuScreen::punte_menu_right_click(int index) {
    if (!entry(index)) return;
    set_entry_password(ctx_, passwords_, menu_password_prefix(kind_), index, caption(index));
}

void MenuScreen::punte_menu_mouse_move(int index) {
    if (kind_ == MenuKind::Top) password_show_ = fore_colour(index) == 255;
}

void MenuScreen::punte_exit_click() {
    if (kind_ == MenuKind::Top) {
        ctx_.screens.unload(screen::punte_mnu);
        ctx_.screens.unload(screen::sk0_floating);
        ctx_.screens.end_program();
        return;
    }
    ctx_.screens.unload(menu_screen_name(kind_));
    ctx_.screens.show(screen::punte_mnu);
}

void MenuScreen::backup_click() {
    ctx_.run.active_user_key = "admin";
    const QString program = find_ignoring_case(ctx_.run.root_folder, "veldo-vaults/veldo-vaults.exe");
    if (!program.isEmpty()) ctx_.screens.start_process(program);
}

void MenuScreen::data_folder_click() { ctx_.screens.show_modal(screen::change_folder); }

void MenuScreen::system_menu_click() { ctx_.screens.show(screen::sk0_floating); }

void MenuScreen::help_pdf_click() {
    if (kind_ == MenuKind::Top) return;
    ctx_.run.manual_file_name = kind_ == MenuKind::Marks1 ? ctx_.run.tr("m_marks_afr.pdf", "m_marks_eng.pdf")
                                                          : ctx_.run.tr("m_punteboek.pdf", "m_markbook.pdf");
    ctx_.screens.show_modal(screen::acrobat_interface);
}

void MenuScreen::timeout_click() {
    if (kind_ == MenuKind::Top) change_timeout(ctx_);
}

void MenuScreen::www_call_click() {
    // The web-site button has no screen behind it in this version.
    ctx_.dialogs.message("Object required", MsgIcon::Critical);
}

void MenuScreen::timer1_tick() { header.ops_tyd = ctx_.clock.now().toString("HH:mm:ss"); }

bool MenuScreen::data_folder_ok() {
    RunState& run = ctx_.run;
    if (!folder_exists(run.data_folder) || !has_marks_files(run.data_folder)) {
        ctx_.dialogs.message(run.tr("Bestaande gids (" + run.data_folder + ") bevat nie punteleêrs nie ...",
                                    "Current folder (" + run.data_folder + ") does not contain marks files ..."),
                             MsgIcon::Critical);
        ctx_.screens.show_modal(screen::change_folder);
    }
    return true;
}

}  // namespace veldo
