#pragma once
// The three menus: the top menu `punte_mnu` and the two second-level menus
// `punte_menu1` (cycle and test marks, assessment) and `punte_menu2` (mark
// book). An entry is chosen by mouse or by its digit; a protected entry asks
// its password first; a second-level entry tests the data folder and shows
// its screen.

#include <QList>
#include <QString>

#include "shell/form_header.h"

namespace veldo {

struct ShellContext;
struct PasswordLists;

enum class MenuKind { Top, Marks1, Marks2 };

struct MenuEntry {
    int index = 0;
    QChar key;  // the digit that chooses it
    QString caption_af, caption_en;
    QString tip_af, tip_en;
    QString opens;  // the screen it shows
};

const QList<MenuEntry>& menu_entries(MenuKind kind);
QString menu_screen_name(MenuKind kind);
QString menu_password_prefix(MenuKind kind);  // "MARKS_MENU:", "MARKS1_MENU:", "MARKS2_MENU:"

class MenuScreen {
public:
    MenuScreen(ShellContext& ctx, PasswordLists& passwords, MenuKind kind);

    MenuKind kind() const { return kind_; }
    // The load of the menu. False when the audit record could not be written
    // and the menu did not load.
    bool load();

    // Events.
    void punte_menu_click(int index);
    void key_press(QChar key);
    void punte_menu_right_click(int index);
    void punte_menu_mouse_move(int index);
    void form_mouse_move() { password_show_ = false; }
    void punte_exit_click();
    void backup_click();
    void data_folder_click();
    void system_menu_click();
    void help_pdf_click();
    void timeout_click();
    void www_call_click();
    void timer1_tick();

    // The test of the second-level menus: shows the failure and the folder
    // screen, and is true in either case.
    bool data_folder_ok();

    // What the widget shows.
    QString caption(int index) const;
    QString tooltip(int index) const;
    int fore_colour(int index) const;  // 255 (red) for a protected entry, else 0
    bool password_show() const { return password_show_; }
    QString data_folder_tooltip() const;
    QString backup_caption() const;
    // Captions of the small buttons; the family shows pictures on them.
    QString data_folder_caption() const;
    QString timeout_caption() const;
    QString system_menu_caption() const;
    QString help_caption() const;
    QString password_show_text() const;
    QString system_menu_tooltip() const;
    QString dir_disp() const;
    QString ops_stelsel, ops_ops1, ops_subops;
    FormHeader header;

private:
    const MenuEntry* entry(int index) const;
    void choose(int index, const MenuEntry* target, const QString& password_key);

    ShellContext& ctx_;
    PasswordLists& passwords_;
    MenuKind kind_;
    bool password_show_ = false;
    QList<int> colours_;
};

}  // namespace veldo
