#pragma once
// Dialogs for the command line: every message goes to standard error, every
// question is answered Yes, pickers return what the command line gave.

#include <QString>
#include <QStringList>
#include <cstdio>

#include "shell/screens.h"
#include "util/user_dialogs.h"

namespace veldo {

class CliDialogs : public UserDialogs {
public:
    MsgAnswer message(const QString& text, MsgIcon icon, MsgButtons buttons, const QString&) override {
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
        if (icon == MsgIcon::Critical) refused = true;
        switch (buttons) {
            case MsgButtons::YesNo:
            case MsgButtons::YesNoCancel: return MsgAnswer::Yes;
            default: return MsgAnswer::Ok;
        }
    }
    // Prompts take the command line's answers in turn, then their defaults.
    QString input(const QString&, const QString&, const QString& default_text) override {
        return inputs.isEmpty() ? default_text : inputs.takeFirst();
    }
    void beep() override {}
    QString choose_folder(const QString&, const QString& start_folder) override {
        return folder.isEmpty() ? start_folder : folder;
    }
    QString choose_open_file(const QString&, const QString&, const QString&) override { return file; }
    QString choose_save_file(const QString&, const QString&, const QString&) override { return file; }
    QString clipboard_text() override { return clipboard; }
    void set_clipboard_text(const QString& text) override { clipboard = text; }

    bool refused = false;  // a critical message was shown
    QString folder;        // what a folder picker answers
    QString file;          // what a file picker answers
    QString clipboard;
    QStringList inputs;
};

// Screens for the command line: nothing to show, no other program to start.
class CliScreens : public Screens {
public:
    void show(const QString&) override {}
    void show_modal(const QString&) override {}
    void unload(const QString&) override {}
    bool is_loaded(const QString&) const override { return false; }
    QStringList loaded() const override { return {}; }
    void end_program() override {}
    bool start_process(const QString&) override { return false; }
    bool open_document(const QString&) override { return false; }
    QStringList process_environment() const override { return {}; }
};

}  // namespace veldo
