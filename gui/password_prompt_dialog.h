#pragma once
// sk1_wagwoord on screen: the label, the masked entry box and OK. Enter in
// the box presses OK (the default button). Everything goes to PasswordPrompt.

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "shell/passwords.h"

namespace veldo {

class PasswordPromptDialog : public QDialog {
    Q_OBJECT
public:
    explicit PasswordPromptDialog(ShellContext& ctx, QWidget* parent = nullptr);

    PasswordPrompt& prompt() { return prompt_; }
    QLineEdit* scr_wagwoord() const { return entry_; }
    QPushButton* wagwoord_ok() const { return ok_; }

public slots:
    void wagwoord_ok_click();

protected:
    void showEvent(QShowEvent* event) override;

private:
    PasswordPrompt prompt_;
    QLabel* label_;
    QLabel* description_;
    QLineEdit* entry_;
    QPushButton* ok_;
};

}  // namespace veldo
