#pragma once
// The run state: the program-wide values every screen reads. Texts start
// empty, numbers 0, flags false. One object lives for the whole run; the
// tests make one per case.

#include <QDate>
#include <QString>

#include "util/user_dialogs.h"

namespace veldo {

struct RunState {
    bool language_afrikaans = false;

    QString school_name;
    QString school_name_2;  // stays empty in this program
    QString current_year;
    QString data_folder;
    QString program_folder;
    QString start_folder;
    QString root_folder;
    QString family_folder;
    QString product_folder;
    QString drive_name;
    QString admin_folder;            // stays empty in this program
    QString shared_settings_folder;  // stays empty: its files lie at the drive root
    QString school_folder;
    QString sibling_folder_2, sibling_folder_3, sibling_folder_4, sibling_folder_5,
        sibling_folder_6;
    QString year_prefix;  // stays empty in this program
    QString os_product_name;
    QString os_build_text;

    int active_menu = 0;
    QString active_user_key;
    QString menu_password_key;
    bool menu_access_granted = false;
    QString system_password;
    bool password_accepted = false;
    double last_activity = 0;
    float timeout_seconds = 0;  // a single, as the family keeps it
    int countdown_ms = 0;
    QString manual_file_name;
    double backdrop_red = 0, backdrop_green = 0, backdrop_blue = 0;
    int file_no_a = 0, file_no_b = 0, file_no_c = 0;

    // The folder that stands for the root of the current drive: where the
    // family keeps ProgramData, the lock file and the printer switch. Taken
    // from KESTRALIN_DRIVE, else the user's home folder.
    QString drive_root;
    // The clock's date; tests fix it.
    QDate today = QDate::currentDate();

    // How the system speaks to the user. Never null once the program runs.
    UserDialogs* dialogs = nullptr;

    // Picks the text of the user's language.
    const QString& tr(const QString& afrikaans, const QString& english) const {
        return language_afrikaans ? afrikaans : english;
    }
    // The folder a "\name" path lands in when its folder variable is empty.
    QString in_folder(const QString& folder, const QString& name) const;

    // The series row (0-based) the input screen's print button hands to the
    // print screen; -1 when the print screen starts on its own list.
    int print_series_row = -1;
};

// The drive root from the environment (KESTRALIN_DRIVE, else home).
QString drive_root_from_environment();

}  // namespace veldo
