#include "gui/password_prompt_dialog.h"

#include <QVBoxLayout>

namespace veldo {

PasswordPromptDialog::PasswordPromptDialog(ShellContext& ctx, QWidget* parent) : QDialog(parent), prompt_(ctx) {
    setObjectName(QStringLiteral("sk1_wagwoord"));
    setModal(true);
    setWindowTitle(prompt_.caption());

    auto* layout = new QVBoxLayout(this);
    label_ = new QLabel(prompt_.scr_wwd_txt(), this);
    label_->setObjectName(QStringLiteral("scr_wwd_txt"));
    label_->setAlignment(Qt::AlignCenter);
    QFont bold = label_->font();
    bold.setBold(true);
    label_->setFont(bold);
    description_ = new QLabel(prompt_.ww_program_beskrywing(), this);
    description_->setObjectName(QStringLiteral("ww_program_beskrywing"));
    description_->setAlignment(Qt::AlignCenter);
    entry_ = new QLineEdit(this);
    entry_->setObjectName(QStringLiteral("scr_wagwoord"));
    entry_->setEchoMode(QLineEdit::Password);
    ok_ = new QPushButton(QStringLiteral("OK"), this);
    ok_->setObjectName(QStringLiteral("wagwoord_ok"));
    // The dialog presses its default button on Enter, also from the box.
    ok_->setDefault(true);
    layout->addWidget(label_);
    layout->addWidget(description_);
    layout->addWidget(entry_);
    layout->addWidget(ok_);
    connect(ok_, &QPushButton::clicked, this, &PasswordPromptDialog::wagwoord_ok_click);
}

void PasswordPromptDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    prompt_.activate();
    entry_->setFocus();
}

void PasswordPromptDialog::wagwoord_ok_click() {
    prompt_.wagwoord_ok(entry_->text());
    if (prompt_.unloaded()) reject();
}

}  // namespace veldo
