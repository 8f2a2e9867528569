#pragma once
// A dialog service for tests: answers come from a queue (Yes/Ok when it runs
// dry), and every message, prompt and beep is recorded.

#include <QList>
#include <QQueue>
#include <QString>
#include <QStringList>

#include "util/user_dialogs.h"

namespace veldo::testing {

struct ShownMessage {
    QString text;
    MsgIcon icon;
    MsgButtons buttons;
    QString title;
};

class ScriptedDialogs : public UserDialogs {
public:
    MsgAnswer message(const QString& text, MsgIcon icon, MsgButtons buttons, const QString& title) override {
        messages.append({text, icon, buttons, title});
        if (!answers.isEmpty()) return answers.dequeue();
        return buttons == MsgButtons::YesNo || buttons == MsgButtons::YesNoCancel ? MsgAnswer::Yes : MsgAnswer::Ok;
    }
    QString input(const QString& prompt, const QString&, const QString& default_text) override {
        prompts.append(prompt);
        return inputs.isEmpty() ? default_text : inputs.dequeue();
    }
    void beep() override { ++beeps; }
    QString choose_folder(const QString& title, const QString& start) override {
        prompts.append(title);
        folder_start = start;
        return folders.isEmpty() ? QString() : folders.dequeue();
    }
    QString choose_open_file(const QString& title, const QString& start, const QString& filter) override {
        prompts.append(title);
        file_start = start;
        file_filter = filter;
        return files.isEmpty() ? QString() : files.dequeue();
    }
    QString choose_save_file(const QString& title, const QString& s, const QString& f) override {
        return choose_open_file(title, s, f);
    }
    QString clipboard_text() override { return clipboard; }
    void set_clipboard_text(const QString& text) override { clipboard = text; }

    QStringList texts() const {
        QStringList out;
        for (const auto& m : messages) out << m.text;
        return out;
    }

    QList<ShownMessage> messages;
    QStringList prompts;
    int beeps = 0;
    QQueue<MsgAnswer> answers;
    QQueue<QString> inputs, folders, files;
    QString clipboard;
    QString folder_start;             // of the last folder picker
    QString file_start, file_filter;  // of the last file picker
};

}  // namespace veldo::testing
