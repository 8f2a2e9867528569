#include "gui/floating_menu_widget.h"

#include <QGridLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/floating_menu.h"

namespace veldo {

FloatingMenuWidget::FloatingMenuWidget(FloatingMenu& menu, QWidget* parent)
    : QWidget(parent, Qt::Tool), menu_(menu) {
    setObjectName(QStringLiteral("sk0_floating"));
    setWindowTitle(QStringLiteral("KESTRALIN"));
    menu_.load();

    auto* grid = new QGridLayout;
    constexpr int kColumns = 3;
    int slot = 0;
    for (const FloatingMenu::Button& button : FloatingMenu::buttons()) {
        auto* b = new QPushButton(button.caption, this);
        b->setObjectName(QStringLiteral("sk0f_menu_%1").arg(button.index));
        const int index = button.index;
        connect(b, &QPushButton::clicked, this, [this, index] { menu_.sk0f_menu_click(index); });
        grid->addWidget(b, slot / kColumns, slot % kColumns);
        ++slot;
    }

    environment_ = new QPlainTextEdit(this);
    environment_->setObjectName(QStringLiteral("system_environment"));
    environment_->setReadOnly(true);
    environment_->setLineWrapMode(QPlainTextEdit::NoWrap);
    environment_->setPlainText(menu_.environment_text());

    auto* exit = new QPushButton(QStringLiteral("EXIT"), this);
    exit->setObjectName(QStringLiteral("sk0f_exit"));
    connect(exit, &QPushButton::clicked, this, [this] {
        menu_.sk0f_exit();
        // The screen service may not know this instance: close it here too.
        close();
    });

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(environment_);
    layout->addWidget(exit, 0, Qt::AlignRight);
}

}  // namespace veldo
