#pragma once
// The one way the logic talks to the person at the machine. The desktop
// program answers with real boxes, the command line with an answer-yes
// service that prints to standard error, and the tests with a scripted one.

#include <QString>

namespace veldo {

enum class MsgIcon { None, Critical, Question, Exclamation, Information };
enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel, AbortRetryIgnore };
enum class MsgAnswer { Ok, Cancel, Yes, No };

class UserDialogs {
public:
    virtual ~UserDialogs() = default;
    // A message box; returns the button pressed.
    virtual MsgAnswer message(const QString& text, MsgIcon icon = MsgIcon::None,
                              MsgButtons buttons = MsgButtons::Ok,
                              const QString& title = QString()) = 0;
    // An input box; a cancelled box gives the empty text.
    virtual QString input(const QString& prompt, const QString& title = QString(),
                          const QString& default_text = QString()) = 0;
    virtual void beep() = 0;
    // Folder and file pickers; an empty result means the user cancelled.
    virtual QString choose_folder(const QString& title, const QString& start_folder) = 0;
    virtual QString choose_open_file(const QString& title, const QString& start_folder,
                                     const QString& filter) = 0;
    virtual QString choose_save_file(const QString& title, const QString& start_folder,
                                     const QString& filter) = 0;
    virtual QString clipboard_text() = 0;
    virtual void set_clipboard_text(const QString& text) = 0;
};

// Answers every question with Yes (or OK), every prompt with its default,
// every picker with nothing, and shows nothing: for benchmarks and fuzzing.
class SilentDialogs : public UserDialogs {
public:
    MsgAnswer message(const QString&, MsgIcon, MsgButtons buttons, const QString&) override {
        return buttons == MsgButtons::YesNo || buttons == MsgButtons::YesNoCancel ? MsgAnswer::Yes : MsgAnswer::Ok;
    }
    QString input(const QString&, const QString&, const QString& default_text) override { return default_text; }
    void beep() override {}
    QString choose_folder(const QString&, const QString&) override { return {}; }
    QString choose_open_file(const QString&, const QString&, const QString&) override { return {}; }
    QString choose_save_file(const QString&, const QString&, const QString&) override { return {}; }
    QString clipboard_text() override { return {}; }
    void set_clipboard_text(const QString&) override {}
};

// Thrown where the system ends the program (a vanished drive, no free file
// number). The message has been shown by then; main() turns this into an
// exit code.
struct ProgramEnd {
    int exit_code = 1;
};

}  // namespace veldo
