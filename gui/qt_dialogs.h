#pragma once
// UserDialogs with real boxes: QMessageBox, QInputDialog, QFileDialog.

#include <QPointer>
#include <QWidget>

#include "util/user_dialogs.h"

namespace veldo {

class QtDialogs : public UserDialogs {
public:
    explicit QtDialogs(QWidget* parent = nullptr) : parent_(parent) {}
    void set_parent(QWidget* parent) { parent_ = parent; }

    MsgAnswer message(const QString& text, MsgIcon icon, MsgButtons buttons, const QString& title) override;
    QString input(const QString& prompt, const QString& title, const QString& default_text) override;
    void beep() override;
    QString choose_folder(const QString& title, const QString& start_folder) override;
    QString choose_open_file(const QString& title, const QString& start_folder, const QString& filter) override;
    QString choose_save_file(const QString& title, const QString& start_folder, const QString& filter) override;
    QString clipboard_text() override;
    void set_clipboard_text(const QString& text) override;

private:
    QPointer<QWidget> parent_;
};

}  // namespace veldo
