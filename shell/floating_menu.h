#pragma once
// sk0_floating: the small window of the top menu's system button. It starts
// a sibling program of the family as a process of its own and shows the
// process environment for whoever supports the installation.

#include <QList>
#include <QString>

#include "shell/form_header.h"
#include "shell/screens.h"

namespace veldo {

class FloatingMenu {
public:
    struct Button {
        int index;
        QString caption;
    };
    struct Launcher {
        int index;
        QString program;
        QString path;  // behind root_folder
    };

    explicit FloatingMenu(ShellContext& context);

    // Fills the environment box: each entry followed by a line end.
    void load();
    // Starts the program of the button when it is installed, else tells the
    // user to install it. Buttons without a program do nothing. The window
    // stays open either way.
    void sk0f_menu_click(int index);
    void sk0f_exit();

    const QString& environment_text() const { return environment_text_; }

    // Every button of the window, by index, with the ones that start nothing.
    static const QList<Button>& buttons();
    // The programs the buttons start.
    static const QList<Launcher>& launchers();
    // The installed program behind a launcher path, its folder and file
    // looked up ignoring case; empty when it is missing.
    QString installed_program(const QString& path) const;

private:
    ShellContext& ctx_;
    QString environment_text_;
};

}  // namespace veldo
